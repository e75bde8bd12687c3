#pragma once

#include "objects/CPDFPathPoint.h"

#include <QMatrix>
#include <QString>

#include <podofo/podofo.h>

#include <cstdint>
#include <vector>

namespace VellumLib {

/// One operator of a content stream with what came before it.
struct CPDFOperation {
    std::vector<PoDoFo::PdfVariant> operands;
    QString name;  ///< empty at the end of the stream
};

enum EStatementKind : std::int32_t {
    StatementEnd = 0,  ///< the stream has no more
    StatementOther = 1,
    StatementPath = 2,
    StatementBeginMarked = 4,
    StatementEndMarked = 5,
    StatementState = 7,
    StatementSave = 8,
    StatementRestore = 9,
    StatementColor = 10,
    StatementXObject = 11,
    StatementClip = 12,
    StatementShading = 13,
    StatementBeginText = 14,
    StatementEndText = 15,
    StatementTextMatrix = 16,
};

/// One drawing object read from a content stream, such as a path with its painting
/// operator; its points lie in unrotated page space, in points.
class CPDFStatement {
public:
    std::int32_t GetKind() const { return kind_; }
    void SetKind(std::int32_t kind) { kind_ = kind; }
    const QMatrix& GetMatrix() const { return matrix_; }
    void SetMatrix(const QMatrix& matrix) { matrix_ = matrix; }
    /// Of the operands' text and the operators' names, without white space.
    std::uint64_t GetByteCount() const { return byte_count_; }
    void AddBytes(std::uint64_t count) { byte_count_ += count; }
    std::vector<CPDFPathPoint>& GetPoints() { return points_; }
    const std::vector<CPDFPathPoint>& GetPoints() const { return points_; }
    std::vector<CPDFOperation>& GetOperations() { return operations_; }
    const std::vector<CPDFOperation>& GetOperations() const { return operations_; }
    /// True on a clipping statement whose group has a shading.
    bool HasShading() const { return has_shading_; }
    void SetHasShading(bool has) { has_shading_ = has; }

    /// To the place under the statement's matrix.
    void Transform(double& x, double& y) const;
    /// Everything but the matrix.
    void Reset();
    /// The operations as content stream text.
    QString ToText() const;

private:
    std::int32_t kind_ = StatementOther;
    std::vector<CPDFPathPoint> points_;
    QMatrix matrix_;
    std::vector<CPDFOperation> operations_;
    std::uint64_t byte_count_ = 0;
    bool has_shading_ = false;
};

}  // namespace VellumLib
