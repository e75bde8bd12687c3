#include "objects/CPDFCanvas.h"

#include "objects/CPDFXObject.h"
#include "objects/PathPoints.h"
#include "objects/PdfText.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace VellumLib {

using PoDoFo::PdfVariant;

namespace {

using namespace std::string_view_literals;

template <std::size_t N>
bool IsOneOf(const QString& name, const std::array<std::string_view, N>& names) {
    return std::any_of(names.begin(), names.end(), [&](std::string_view candidate) {
        return name == QLatin1String(candidate.data(), static_cast<int>(candidate.size()));
    });
}

constexpr std::array kState = {"w"sv, "j"sv, "J"sv, "M"sv, "d"sv, "ri"sv, "i"sv, "gs"sv};
constexpr std::array kColor = {"CS"sv, "cs"sv, "SC"sv, "SCN"sv, "sc"sv, "scn"sv,
                               "g"sv,  "G"sv,  "rg"sv, "RG"sv,  "K"sv,  "k"sv};
constexpr std::array kPath = {"m"sv, "l"sv, "h"sv, "y"sv, "v"sv, "c"sv, "re"sv};
constexpr std::array kPainting = {"s"sv, "S"sv, "f"sv, "f*"sv, "F"sv, "b"sv, "b*"sv, "B"sv, "B*"sv, "n"sv};
constexpr std::array kClip = {"W"sv, "W*"sv};

struct SimpleKind {
    std::string_view name;
    EStatementKind kind;
};
constexpr std::array kSimple = {
    SimpleKind{"BDC"sv, StatementBeginMarked}, SimpleKind{"EMC"sv, StatementEndMarked},
    SimpleKind{"sh"sv, StatementShading},      SimpleKind{"W"sv, StatementClip},
    SimpleKind{"W*"sv, StatementClip},         SimpleKind{"BT"sv, StatementBeginText},
    SimpleKind{"ET"sv, StatementEndText}};

}  // namespace

CPDFCanvas::CPDFCanvas() : matrices_{QMatrix()} {}

CPDFCanvas::CPDFCanvas(const CPDFCanvas& other)
    : objects_(other.objects_), x_object_resources_(other.x_object_resources_), matrices_{QMatrix()} {}

CPDFCanvas::~CPDFCanvas() = default;

void CPDFCanvas::SetMatrix(const QMatrix& matrix) {
    matrix_ = matrix;
    matrices_.push_back(matrix);
}

void CPDFCanvas::PopMatrix() {
    if (matrices_.empty()) return;
    matrices_.pop_back();
    matrix_ = matrices_.empty() ? QMatrix() : matrices_.back();
}

bool CPDFCanvas::ReadOperation(CPDFStatement& statement) {
    CPDFOperation operation;
    PoDoFo::EPdfContentsType type = PoDoFo::ePdfContentsType_Variant;
    const char* keyword = nullptr;
    PdfVariant operand;
    bool more = tokenizer_->ReadNext(type, keyword, operand);
    while (more && type == PoDoFo::ePdfContentsType_Variant) {
        std::string text;
        operand.ToString(text);
        statement.AddBytes(text.size());
        operation.operands.push_back(operand);
        more = tokenizer_->ReadNext(type, keyword, operand);
    }
    if (more && type == PoDoFo::ePdfContentsType_Keyword && keyword) {
        operation.name = QString::fromLatin1(keyword);
        statement.AddBytes(static_cast<std::uint64_t>(operation.name.size()));
    }
    statement.SetMatrix(matrix_);
    statement.GetOperations().push_back(std::move(operation));
    AddPathPoints(statement);
    return more;
}

std::int32_t CPDFCanvas::NextStatement(CPDFStatement& statement) {
    statement.Reset();
    if (ahead_.empty()) {
        ReadStatement(statement);
    } else {
        statement = std::move(ahead_.back());
        ahead_.pop_back();
    }
    return statement.GetKind();
}

void CPDFCanvas::ReadStatement(CPDFStatement& statement) {
    statement.Reset();
    OpenContents();
    if (ReadOperation(statement))
        Classify(statement);
    else
        statement.SetKind(StatementEnd);
}

void CPDFCanvas::Classify(CPDFStatement& statement) {
    const QString name = statement.GetOperations().front().name;
    if (IsOneOf(name, kState)) return statement.SetKind(StatementState);
    if (ClassifyMatrix(statement)) return;
    if (IsOneOf(name, kColor)) return statement.SetKind(StatementColor);
    if (name == QLatin1String("Do") && x_object_resources_) return ReadXObject(statement);
    if (IsOneOf(name, kPath)) return ReadPath(statement);
    for (const SimpleKind& simple : kSimple)
        if (name == QLatin1String(simple.name.data(), static_cast<int>(simple.name.size())))
            statement.SetKind(simple.kind);
    if (statement.GetKind() == StatementEndText) PopMatrix();
}

/// A save pushes nothing, a matrix does; so a restore takes back the last matrix
/// alone, and the end of a text does the same.
bool CPDFCanvas::ClassifyMatrix(CPDFStatement& statement) {
    const CPDFOperation& operation = statement.GetOperations().front();
    if (operation.name == QLatin1String("cm")) {
        statement.SetKind(StatementState);
        SetMatrix(MatrixOperand(operation) * matrix_);
    } else if (operation.name == QLatin1String("Tm")) {
        statement.SetKind(StatementTextMatrix);
        matrix_ = MatrixOperand(operation);
    } else if (operation.name == QLatin1String("q")) {
        statement.SetKind(StatementSave);
    } else if (operation.name == QLatin1String("Q")) {
        statement.SetKind(StatementRestore);
        PopMatrix();
    } else {
        return operation.name == QLatin1String("Tj");
    }
    return true;
}

void CPDFCanvas::ReadXObject(CPDFStatement& statement) {
    statement.SetMatrix(matrix_);
    statement.SetKind(StatementXObject);
    const CPDFOperation& operation = statement.GetOperations().front();
    if (operation.operands.empty()) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_ValueOutOfRange);
    const PoDoFo::PdfName name = operation.operands.front().GetName();
    PoDoFo::PdfObject* object = FollowKey(*objects_, *x_object_resources_, name);
    if (!object) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_NoObject);
    PoDoFo::PdfDictionary& dictionary = object->GetDictionary();
    dictionary.AddKey(PoDoFo::PdfName("Type"), PoDoFo::PdfName("XObject"));
    dictionary.AddKey(PoDoFo::PdfName("StructParents"), PoDoFo::PdfObject(PoDoFo::pdf_int64{0}));
    const auto add_point = [&](double x, double y) {
        CPDFPathPoint point;
        point.x = x;
        point.y = y;
        statement.GetPoints().push_back(point);
    };
    if (name.GetName().rfind("Im", 0) == 0) {
        add_point(matrix_.dx(), matrix_.dy());
        add_point(matrix_.dx() + matrix_.m11(), matrix_.dy() + matrix_.m22());
    } else if (dictionary.HasKey(PoDoFo::PdfName("Group"))) {
        pending_ = std::make_unique<CPDFXObject>(object);
        pending_->SetMatrix(matrix_);
    } else {
        add_point(matrix_.dx(), matrix_.dy());
    }
}

void CPDFCanvas::ReadPath(CPDFStatement& statement) {
    statement.SetKind(StatementPath);
    statement.SetMatrix(matrix_);
    if (progress_begin_) progress_begin_();
    for (bool more = true; more;) {
        more = ReadOperation(statement);
        if (progress_step_) progress_step_();
        const QString& name = statement.GetOperations().back().name;
        if (IsOneOf(name, kClip)) statement.SetKind(StatementClip);
        more = more && !IsOneOf(name, kPainting);
    }
    opens_group_ = statement.GetKind() == StatementClip;
    if (opens_group_ && reads_group_) return;
    if (opens_group_) ReadClippedGroup(statement);
    if (progress_end_) progress_end_();
}

/// Up to the first restore, at whatever level. Goes in at the front and comes out at
/// the back. A clip in the group has a group of its own, which is read first; honest pages nest
/// them a thousand deep.
void CPDFCanvas::ReadClippedGroup(CPDFStatement& clip) {
    struct Reading {
        bool& flag;
        explicit Reading(bool& of) : flag(of) { flag = true; }
        ~Reading() { flag = false; }
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;
    };
    const Reading reading(reads_group_);
    std::vector<CPDFStatement> open;
    for (bool more = true; more;) {
        CPDFStatement statement;
        opens_group_ = false;
        ReadStatement(statement);
        if (opens_group_) {
            open.push_back(std::move(statement));
            continue;
        }
        const std::int32_t kind = statement.GetKind();
        if (kind == StatementShading) (open.empty() ? clip : open.back()).SetHasShading(true);
        if (kind != StatementEnd) ahead_.push_front(std::move(statement));
        if (kind != StatementEnd && kind != StatementRestore) continue;
        more = !open.empty();
        if (!more) break;
        ahead_.push_front(std::move(open.back()));
        open.pop_back();
        if (progress_end_) progress_end_();
    }
}

}  // namespace VellumLib
