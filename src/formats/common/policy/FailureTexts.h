#pragma once

namespace MapAnchor {

/// The texts of one format's failures, for the steps that all formats share. They are fixed,
/// spelling included. Log lines and details are formats of BString::Format; `message` is the
/// text of the exception that was caught.
struct FailureTexts {
    /// Source of the exceptions and of log lines, such as "BRefWLD::Read".
    const char* source;
    /// Source of the exception that replaces one caught on the way; null for `source`.
    const char* replaced_source = nullptr;
    /// Log line where the affine fails: takes the message.
    const char* affine_line = nullptr;
    /// The same for formats that log the terms: takes a, b, c, d, e, f and the message.
    const char* affine_terms_line = nullptr;
    /// Log line where no transform fits the control points: takes the message.
    const char* points_line = nullptr;
    /// Detail where the corners to write cannot be made: takes the file and the message.
    const char* corners_detail = nullptr;
    /// What a save calls the file that it cannot write, such as "WLD".
    const char* file_kind = nullptr;

    constexpr const char* SourceOfReplaced() const { return replaced_source ? replaced_source : source; }
};

}  // namespace MapAnchor
