#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/EFileMode.h>
#include <Tellurion/Export.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Tellurion {

/// One file, read or written from front to end. Not for use by two threads at once.
/// Nothing throws for the file's sake: failures are results.
class TELLURION_EXPORT BFile {
public:
    /// A longer line is delivered cut here, and reading ends with it. A guard
    /// against files without line ends, far above any line that means something.
    static constexpr std::size_t kLongestLine = std::size_t{16} << 20;

    explicit BFile(const BString& path);  ///< touches no file before Open()
    ~BFile();
    BFile(const BFile&) = delete;
    BFile& operator=(const BFile&) = delete;

    /// True on success; false for a missing file or no permission, and to read for
    /// anything but a regular file, such as a folder or a pipe, which is not opened.
    bool Open(const EFileMode& access, const EFileMode& form);

    /// The next line without its end ("\n" or "\r\n"), also the last one
    /// without an end; false when there is none. With maxLength above 0 reading
    /// stops after that many bytes and goes on there next time. A line that
    /// is no UTF-8 is taken as Windows-1252. A byte order mark at the start of a
    /// text file is skipped.
    bool ReadLine(BString& line, std::size_t maxLength);
    /// The same with the line's bytes as they are; the view holds until the next read.
    bool ReadLineBytes(std::string_view& line);

    /// True once the end of the file has been reached.
    bool atEOF() const;
    /// Reads up to `count` bytes; the count read.
    std::size_t Read(void* buffer, std::size_t count);
    /// The size in bytes; -1 when the file is not open or cannot tell.
    std::int64_t GetLength() const;

    /// Writes the UTF-8 form of `text` unchanged, without a line end of its own.
    /// The bytes may reach the file only at Close. False after any failed write.
    bool WriteLine(const BString& text);

    /// False when anything that was written may not have reached the file, now or
    /// before. Closing a closed file does nothing and repeats that answer.
    bool Close();

    const BString& GetPath() const { return path_; }  ///< as it was given

private:
    bool Fill();
    bool Flush();
    bool NextLine(std::string_view& line, std::size_t limit);

    BString path_;
    int descriptor_ = -1;
    bool writing_ = false;
    bool failed_ = false;
    bool at_end_ = false;
    bool at_start_ = false;
    bool text_ = false;
    std::string buffer_;
    std::size_t position_ = 0;
};

}  // namespace Tellurion
