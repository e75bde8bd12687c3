#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <exception>
#include <memory>

namespace Tellurion {

/// The root of all failures that the library reports. A failure has up to three
/// parts: a message that is fixed for its class, a source such as "BRefWLD::Read",
/// and a detail that distinguishes this failure. Copying does not throw.
class TELLURION_EXPORT BException : public std::exception {
public:
    explicit BException(const BString& message);               ///< no source, no detail
    BException(const BString& source, const BString& detail);  ///< no message
    BException(const BString& message, const BString& source, const BString& detail);  ///< all three
    BException(const BException&) noexcept;
    BException& operator=(const BException&) noexcept;
    ~BException() override;

    /// The detailed message in UTF-8.
    const char* what() const noexcept override;
    /// Message and detail, then the source in parentheses; parts that are empty are left out.
    BString GetDetailedMessage() const;

    const BString& GetMessageText() const;  ///< fixed for the class
    const BString& GetSource() const;       ///< the operation, may be empty
    const BString& GetDetail() const;       ///< may be empty
    /// The name of the class, such as "BFileNotFoundException".
    virtual const char* GetTypeName() const noexcept;

private:
    struct Parts;
    std::shared_ptr<const Parts> parts_;
};

}  // namespace Tellurion
