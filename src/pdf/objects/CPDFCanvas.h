#pragma once

#include "objects/CPDFStatement.h"
#include "objects/ContentReader.h"

#include <QMatrix>
#include <QString>

#include <podofo/podofo.h>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace VellumLib {

class CPDFXObject;

/// Something that has a content stream: a page or a form. Reads it as a sequence of
/// statements, from the first to kind 0; there is no rewind.
class CPDFCanvas {
public:
    using Callback = std::function<void()>;

    virtual ~CPDFCanvas();
    CPDFCanvas& operator=(const CPDFCanvas&) = delete;

    /// Makes the tokenizer of the content, once.
    virtual void OpenContents() = 0;
    virtual void WriteStatement(const CPDFStatement& statement) = 0;
    virtual void WriteText(const QString& text) = 0;
    virtual void FlushContents() = 0;
    /// Reads one operator with its operands; false at the end.
    virtual bool ReadOperation(CPDFStatement& statement);

    /// The next statement, or one that was read ahead; gives its kind.
    std::int32_t NextStatement(CPDFStatement& statement);
    void ReadStatement(CPDFStatement& statement);
    /// Makes the matrix current and pushes it.
    void SetMatrix(const QMatrix& matrix);

    // Called while a path is read: at its start, for each operation, at its end.
    void SetProgressBeginCallback(Callback callback) { progress_begin_ = std::move(callback); }
    void SetProgressStepCallback(Callback callback) { progress_step_ = std::move(callback); }
    void SetProgressEndCallback(Callback callback) { progress_end_ = std::move(callback); }

protected:
    CPDFCanvas();
    /// A new reading state on the same content; callbacks stay behind.
    CPDFCanvas(const CPDFCanvas& other);

    std::unique_ptr<ContentTokenizer> tokenizer_;
    PoDoFo::PdfVecObjects* objects_ = nullptr;         ///< the document's
    PoDoFo::PdfObject* x_object_resources_ = nullptr;  ///< the document's; null when unknown
    /// The form that the last statement called for and that was not entered yet.
    std::unique_ptr<CPDFXObject> pending_;

private:
    void Classify(CPDFStatement& statement);
    bool ClassifyMatrix(CPDFStatement& statement);
    void ReadXObject(CPDFStatement& statement);
    void ReadPath(CPDFStatement& statement);
    void ReadClippedGroup(CPDFStatement& clip);
    void PopMatrix();

    QMatrix matrix_;
    std::deque<QMatrix> matrices_;
    std::deque<CPDFStatement> ahead_;
    bool reads_group_ = false;  ///< a clip's group is being read ahead
    bool opens_group_ = false;  ///< the last path is a clip, whose group follows
    Callback progress_begin_;
    Callback progress_step_;
    Callback progress_end_;
};

}  // namespace VellumLib
