#include "objects/CPDFStatement.h"

namespace VellumLib {

void CPDFStatement::Transform(double& x, double& y) const {
    const QMatrix place = QMatrix(1, 0, 0, 1, x, y) * matrix_;
    x = place.dx();
    y = place.dy();
}

void CPDFStatement::Reset() {
    kind_ = StatementOther;
    operations_.clear();
    points_.clear();
    byte_count_ = 0;
    has_shading_ = false;
}

QString CPDFStatement::ToText() const {
    QString text;
    for (const CPDFOperation& operation : operations_) {
        for (const PoDoFo::PdfVariant& operand : operation.operands) {
            std::string written;
            operand.ToString(written);
            text += QString::fromLatin1(written.data(), static_cast<int>(written.size())) + " ";
        }
        text += operation.name + "\n";
    }
    return text;
}

}  // namespace VellumLib
