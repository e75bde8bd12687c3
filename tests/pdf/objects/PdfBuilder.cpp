#include "PdfBuilder.h"

#include <QByteArray>

#include <zlib.h>

#include <cstdio>
#include <stdexcept>

int PdfBuilder::AddAs(int head, const std::string& body) {
    offsets_.push_back(Position());
    text_ += std::to_string(head) + " 0 obj\n" + body + "\nendobj\n";
    return NextNumber() - 1;
}

// The parser looks for a trailer in the last half kibibyte, and fails where there is less.
void PdfBuilder::AddPage(const std::string& keys) {
    text_ += "%" + std::string(600, ' ') + "\n";
    Add("<</Type/Catalog/Pages 2 0 R>>");
    Add("<</Type/Pages/Kids[3 0 R]/Count 1>>");
    Add("<</Type/Page/Parent 2 0 R/MediaBox[0 0 100 100]/Resources<<>>" + keys + ">>");
}

std::string PdfBuilder::Table() const {
    std::string table = "xref\n0 " + std::to_string(offsets_.size()) + "\n0000000000 65535 f \n";
    for (std::size_t i = 1; i < offsets_.size(); ++i) {
        char line[32];
        std::snprintf(line, sizeof line, "%010lld 00000 n \n", static_cast<long long>(offsets_[i]));
        table += line;
    }
    return table;
}

std::string PdfBuilder::Finish(const std::string& keys) {
    const std::int64_t start = Position();
    text_ += Table() + "trailer\n<</Root 1 0 R/Size " + std::to_string(offsets_.size()) + keys + ">>\n";
    return End(start);
}

std::string PdfBuilder::FinishWithStream(const std::vector<int>& compressed, const std::string& keys) {
    const std::int64_t start = Position();
    offsets_.push_back(start);
    std::string rows;
    const auto row = [&rows](int type, std::int64_t place, std::size_t index) {
        rows.push_back(static_cast<char>(type));
        for (int shift = 24; shift >= 0; shift -= 8)
            rows.push_back(static_cast<char>(place >> shift));
        rows.push_back(static_cast<char>(index >> 8));
        rows.push_back(static_cast<char>(index));
    };
    row(0, 0, 65535);
    for (std::size_t i = 1; i < offsets_.size(); ++i)
        row(1, offsets_[i], 0);
    for (std::size_t i = 0; i < compressed.size(); ++i)
        row(2, compressed[i], i);
    text_ += std::to_string(offsets_.size() - 1) + " 0 obj\n" +
             PdfStreamObject(Deflated(rows), "/Type/XRef/Root 1 0 R/W[1 4 2]/Filter/FlateDecode/Size " +
                                                 std::to_string(offsets_.size() + compressed.size()) + keys) +
             "\nendobj\n";
    return End(start);
}

std::string PdfBuilder::End(std::int64_t start) const {
    return text_ + "startxref\n" + std::to_string(start) + "\n%%EOF\n";
}

std::string Deflated(const std::string& data) {
    return qCompress(QByteArray::fromStdString(data)).mid(4).toStdString();  // behind the length
}

// A fully flushed block stands for itself and can be repeated; the checksum at the end
// is of no matter to whoever stops before it.
std::string DeflatedZeros(std::size_t mebibytes) {
    const std::string zeros(1024 * 1024, '\0');
    std::string piece(64 * 1024, '\0');
    z_stream stream{};
    if (deflateInit(&stream, 9) != Z_OK) throw std::runtime_error("cannot compress");
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(zeros.data()));
    stream.avail_in = static_cast<uInt>(zeros.size());
    stream.next_out = reinterpret_cast<Bytef*>(piece.data());
    stream.avail_out = static_cast<uInt>(piece.size());
    deflate(&stream, Z_FULL_FLUSH);
    piece.resize(piece.size() - stream.avail_out);
    deflateEnd(&stream);
    return piece.substr(0, 2) + Repeated(piece.substr(2), mebibytes) + std::string("\x03\0", 2);
}

ObjectStream MakeObjectStream(const std::vector<int>& numbers, const std::vector<std::string>& objects) {
    std::string head;
    std::string body;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        head += std::to_string(numbers[i]) + " " + std::to_string(body.size()) + " ";
        if (i < objects.size()) body += objects[i] + " ";
    }
    return {"/Type/ObjStm/N " + std::to_string(numbers.size()) + "/First " + std::to_string(head.size()),
            head + body};
}
