// Files that would keep the parser busy for ever, fill the memory or break the stack.
// Each is loaded in a process of its own, which is measured from outside.

#include "load/GuardedLoad.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <podofo/podofo.h>

#include <gtest/gtest.h>

#include "PdfBuilder.h"
#include "TempFolder.h"

#include <functional>
#include <limits>
#include <numeric>

namespace VellumLib {
namespace {

using namespace PoDoFo;

// Not a measure of speed: it ends what would never end.
constexpr unsigned kHangSeconds = 60;
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long kMaxKiB = std::numeric_limits<long>::max();
#else
constexpr long kMaxKiB = 256 * 1024;
#endif

enum class Ending { Refused, Loads, Either };
using enum Ending;

struct Bomb {
    const char* name;
    Ending ending;
    std::function<std::string()> make;
};

std::ostream& operator<<(std::ostream& out, const Bomb& bomb) {
    return out << bomb.name;
}

constexpr int kLoaded = 99;
constexpr int kForeign = 98;

int LoadAndUse(const std::string& path, EPDFExtent extent) {
    try {
        const auto loaded = LoadGuarded(path, extent);
        if (loaded->GetPageCount() == 0) return kLoaded;
        PdfPage* const page = loaded->GetPage(0);
        if (!page) return kLoaded;
        page->GetMediaBox();
        page->GetObject()->GetIndirectKey("VP");
        return kLoaded;
    } catch (const PdfError& error) {
        return error.GetError();
    } catch (...) {
        return kForeign;
    }
}

class HostilePdf : public testing::TestWithParam<Bomb> {};

TEST_P(HostilePdf, EndsInTimeAndMemory) {
    const TempFolder folder;
    const std::string path = folder.Write("bomb.pdf", GetParam().make());
    const pid_t child = fork();
    if (child == 0) {
        alarm(kHangSeconds);
        PdfError::EnableDebug(false);
        PdfError::EnableLogging(false);
        if (LoadAndUse(path, EPDFExtent::FirstPage) == kForeign) _exit(kForeign);
        _exit(LoadAndUse(path, EPDFExtent::Whole));
    }
    int status = 0;
    rusage usage{};
    ASSERT_EQ(wait4(child, &status, 0, &usage), child);
    ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    const int code = WEXITSTATUS(status);
    EXPECT_NE(code, kForeign) << "an exception that is not a PdfError";
    EXPECT_TRUE(GetParam().ending == Either || (code == kLoaded) == (GetParam().ending == Loads)) << code;
    EXPECT_LT(usage.ru_maxrss, kMaxKiB);
}

std::string Page(const std::string& keys = "") {
    return WithPage(keys).Finish();
}

std::string NestedPage(const std::string& open, const std::string& close, std::size_t depth) {
    return Page("/A " + Nested(open, close, depth));
}

std::vector<int> From(int first, std::size_t count) {
    std::vector<int> numbers(count);
    std::iota(numbers.begin(), numbers.end(), first);
    return numbers;
}
std::vector<int> DownTo(int last, std::size_t count) {
    const std::vector<int> numbers = From(last, count);
    return {numbers.rbegin(), numbers.rend()};
}

// Objects 6 and on live in object stream 4; 5 is the cross-reference stream.
std::string InObjectStream(const std::vector<int>& numbers, const std::vector<std::string>& objects,
                           const std::vector<int>& compressed) {
    PdfBuilder file = WithPage("/VP 6 0 R");
    const ObjectStream stream = MakeObjectStream(numbers, objects);
    file.AddStream(stream.keys + "/Filter/FlateDecode", Deflated(stream.content));
    return file.FinishWithStream(compressed);
}

/// A cross-reference stream.
std::string References(const std::string& keys, const std::string& data) {
    PdfBuilder file = WithPage();
    const std::int64_t start = file.Position();
    file.AddStream("/Type/XRef/Root 1 0 R" + keys, data);
    return file.End(start);
}

std::string FilteredReferences(const std::string& filter, const std::string& data) {
    return References("/Size 4/W[1 4 1]/Filter" + filter, data);
}

std::string Descending(int count) {
    PdfBuilder file = WithPage();
    for (int i = count; i > 3; --i)
        file.AddAs(i, "null");
    return file.Finish();
}

std::string WithTable(const std::string& table, const std::string& size, PdfBuilder file = WithPage()) {
    const std::int64_t start = file.Position();
    file.Append(table + "trailer\n<</Root 1 0 R/Size " + size + ">>\n");
    return file.End(start);
}

std::string BrokenObjects(std::size_t count) {
    return WithTable("xref\n0 " + std::to_string(count) + "\n" + Repeated("0000000003 00000 n \n", count),
                     "4");
}

std::string Subsection(const std::string& header, const std::string& size) {
    return WithTable(WithPage().Table() + header + "\n0000000009 00000 n \n", size);
}

std::string PreviousChain(int sections) {
    PdfBuilder file = WithPage();
    std::int64_t previous = file.Position();
    file.Append(file.Table() + "trailer\n<</Root 1 0 R/Size 4>>\n");
    for (int i = 1; i < sections; ++i) {
        const std::int64_t start = file.Position();
        file.Append("xref\n0 1\n0000000000 65535 f \ntrailer\n<</Root 1 0 R/Size 4/Prev " +
                    std::to_string(previous) + ">>\n");
        previous = start;
    }
    return file.End(previous);
}

/// Nothing is where the maps are said to be, and the table has many empty parts to look in.
std::string ManySubsections() {
    PdfBuilder file = WithPage("/LGIDict 4 0 R");
    file.Add("[" + Repeated("999999 0 R ", 180'000) + "]");
    return WithTable("xref\n" + Repeated("0 0\n", 500'000) + file.Table().substr(5), "5", file);
}

std::string PreviousIsItself(const std::string& key) {
    PdfBuilder file = WithPage();
    return file.Finish(key + " " + std::to_string(file.Position()));
}

std::string Tree(const std::vector<std::string>& nodes) {
    PdfBuilder file;
    file.Add("<</Type/Catalog/Pages 2 0 R>>");
    for (const std::string& node : nodes)
        file.Add(node);
    return file.Finish();
}

std::string NodeAbove(int kid, const std::string& keys = "") {
    return "<</Type/Pages/Count 1" + keys + "/Kids[" + std::to_string(kid) + " 0 R]>>";
}

std::string DeepTree(int depth) {
    std::vector<std::string> nodes;
    for (int i = 0; i < depth; ++i)
        nodes.push_back(NodeAbove(i + 3));
    nodes.push_back("<</Type/Page/MediaBox[0 0 1 1]>>");
    return Tree(nodes);
}

const std::string kPage = "<</Type/Page/Parent 2 0 R>>";

std::string TreeWithCount(const std::string& count, const std::string& kids = "3 0 R") {
    return Tree({"<</Type/Pages/Count " + count + "/Kids[" + kids + "]>>", kPage});
}

const std::string kRow("\x01\0\0\0\x09\0", 6);

std::string MillionAtOnePlace() {
    return References("/Size 1000000/W[1 4 1]/Filter/FlateDecode", Deflated(Repeated(kRow, 1'000'000)));
}

std::string StreamOfLength(const std::string& length) {
    PdfBuilder file = WithPage();
    const std::int64_t start = file.Position();
    file.Add("<</Type/XRef/Root 1 0 R/W[1 4 1]/Size 4/Length " + length + ">>\nstream\n" + Repeated(kRow, 4) +
             "\nendstream");
    return file.End(start);
}

std::string ManyObjectStreams() {
    PdfBuilder file = WithPage();
    std::vector<int> compressed;
    for (int i = 0; i < 60'000; ++i)
        compressed.push_back(file.AddStream("/N 0/First 0", ""));
    return file.FinishWithStream(compressed, "/Size 1999999");
}

std::string OneArrayNamed200Times() {
    PdfBuilder file = WithPage();
    const std::string content = Repeated("6 0 ", 200) + "[" + Repeated("1 ", 2'000'000) + "]";
    file.AddStream("/Type/ObjStm/N 200/First 800/Filter/FlateDecode", Deflated(content));
    return file.FinishWithStream({4});
}

std::string ManyCompressed(const std::vector<int>& numbers, std::size_t placed) {
    return InObjectStream(numbers, std::vector<std::string>(numbers.size(), "1"),
                          std::vector<int>(placed, 4));
}

std::string LargeMetadata() {
    PdfBuilder file = WithPage("/Metadata 4 0 R");
    file.AddStream("/Filter/FlateDecode", DeflatedZeros(2'048));
    return file.Finish();
}

const std::vector<Bomb> kBombs = {
    {"dictionary_20000_deep", Refused, [] { return NestedPage("<</A ", ">>", 20'000); }},
    {"array_200000_deep", Refused, [] { return NestedPage("[", "]", 200'000); }},
    {"mixed_5000_deep", Refused, [] { return NestedPage("<</A[", "]>>", 5'000); }},
    {"behind_a_string", Refused, [] { return NestedPage("<</S(\\)>>)/T<3e3e>/A ", ">>", 5'000); }},
    {"compressed_20000_deep", Refused,
     [] { return InObjectStream({6}, {Nested("<</A ", ">>", 20'000)}, {4}); }},
    {"large_array_inside", Refused,
     [] { return NestedPage("<</B[" + Repeated("1 ", 90'000) + "]/A ", ">>", 90); }},
    {"many_numbers", Refused, [] { return Page("/VP[" + Repeated("0 ", 1'300'000) + "]"); }},
    {"many_strings", Refused, [] { return Page("/VP[" + Repeated("()", 450'000) + "]"); }},
    {"many_strings_below_the_limit", Loads, [] { return Page("/VP[" + Repeated("()", 300'000) + "]"); }},
    {"many_names_without_a_letter", Refused, [] { return Page("/VP[" + Repeated("/", 2'000'000) + "]"); }},
    {"many_numbers_in_little_space", Refused,
     [] { return InObjectStream({6}, {"[" + Repeated("0 ", 1'200'000) + "]"}, {4}); }},
    {"no_width", Refused, [] { return References("/Size 4/W[0 0 0]/Index[0 1099511627776]", "x"); }},
    {"no_width_many_ranges", Refused,
     [] { return References("/Size 4/W[0 0 0]/Index[" + Repeated("0 2000000000 ", 1'000) + "]", "x"); }},
    {"last_entry_cut", Refused, [] { return References("/Size 4/W[8 8 8]/Index[0 1]", "\x01"); }},
    {"wide_field", Refused, [] { return References("/Size 4/W[1 4000 1]", Repeated("x", 20'000)); }},
    {"million_at_one_place", Refused, MillionAtOnePlace},
    {"broken_entries", Either, [] { return BrokenObjects(100'000); }},
    {"many_broken_entries", Refused, [] { return BrokenObjects(1'000'000); }},
    {"one_array_named_200_times", Refused, OneArrayNamed200Times},
    {"compressed_2_gibibytes", Refused,
     [] { return FilteredReferences("/FlateDecode", DeflatedZeros(2'048)); }},
    {"compressed_twice", Refused,
     [] { return FilteredReferences("[/FlateDecode/FlateDecode]", Deflated(DeflatedZeros(4'096))); }},
    {"row_of_a_predictor", Refused,
     [] {
         return FilteredReferences("/FlateDecode/DecodeParms<</Predictor 12/Columns 2147483647>>",
                                   Deflated("x"));
     }},
    {"size_at_the_limit", Refused, [] { return Subsection("4 1", "8388607"); }},
    {"subsection_at_the_limit", Loads, [] { return Subsection("8388606 1", "5"); }},
    {"object_stream_with_100000_entries", Refused, [] { return ManyCompressed(From(6, 100'000), 100'000); }},
    {"object_stream_in_descending_order", Refused, [] { return ManyCompressed(DownTo(6, 120'000), 1); }},
    {"many_object_streams", Refused, ManyObjectStreams},
    {"objects_in_descending_order", Refused, [] { return Descending(200'000); }},
    {"million_kids", Refused, [] { return TreeWithCount("1000000", Repeated("3 0 R ", 1'000'000)); }},
    {"many_subsections", Either, ManySubsections},
    {"previous_is_itself", Loads, [] { return PreviousIsItself("/Prev"); }},
    {"stream_beside_the_table_is_the_table", Refused, [] { return PreviousIsItself("/XRefStm"); }},
    {"previous_too_large", Refused, [] { return WithPage().Finish("/Prev " + std::string(99, '6')); }},
    {"previous_before_the_file", Refused, [] { return WithPage().Finish("/Prev -1"); }},
    {"chain_of_50_updates", Loads, [] { return PreviousChain(50); }},
    {"chain_of_5000_updates", Refused, [] { return PreviousChain(5'000); }},
    {"another_page_under_the_number_of_the_first", Refused,
     [] {
         PdfBuilder file = WithPage();
         file.AddAs(3, kPage);
         return file.Finish();
     }},
    {"tree_points_to_its_root", Refused,
     [] {
         return Tree({NodeAbove(3), NodeAbove(2)});
     }},
    {"parents_in_a_circle", Either,
     [] {
         return Tree({NodeAbove(3, "/Parent 2 0 R"), kPage});
     }},
    {"tree_5000_deep", Refused, [] { return DeepTree(5'000); }},
    {"count_is_huge", Either, [] { return TreeWithCount("2147483647"); }},
    {"count_is_negative", Either, [] { return TreeWithCount("-5"); }},
    {"length_4_gibibytes", Either, [] { return StreamOfLength("4294967296"); }},
    {"length_8_exbibytes", Either, [] { return StreamOfLength("9223372036854775807"); }},
    {"length_negative", Refused, [] { return StreamOfLength("-5"); }},
    {"length_is_the_stream_itself", Refused, [] { return StreamOfLength("4 0 R"); }},
    {"start_behind_the_end", Either, [] { return WithPage().End(99'999'999'999); }},
    {"cut_in_the_middle", Refused, [] { return Page().substr(0, 120); }},
    {"nothing_but_the_end", Refused, [] { return std::string("%PDF-1.5\n%%EOF\n"); }},
    {"empty", Refused, [] { return std::string(); }},
    {"junk_before_the_header", Refused, [] { return "junk\n" + Page(); }},
    {"no_end_in_16_mebibytes", Refused, [] { return "%PDF-1.5\n" + Repeated(" ", 16'000'000); }},
    {"metadata_of_2_gibibytes", Loads, LargeMetadata},
};

INSTANTIATE_TEST_SUITE_P(All, HostilePdf, testing::ValuesIn(kBombs),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace VellumLib
