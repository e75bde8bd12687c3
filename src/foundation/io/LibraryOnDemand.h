#pragma once

#include <Tellurion/Export.h>

#include <cstddef>
#include <mutex>
#include <string>
#include <tuple>

namespace Tellurion {

/// Loads a library for the rest of the process: a path, or a name that the loader looks for. On
/// failure null and the loader's reason; std::bad_alloc where there is no memory for it.
///
/// `below` names a library that it needs and then all that are loaded with that one, each behind what it
/// needs, parted by spaces. Unless the process has the former, the latter are loaded first, each by
/// itself: the loader then looks up the symbols of each among the few libraries that it needs. Of a
/// hundred libraries that are loaded as one, as those below GDAL, it looks up the symbols of each in all
/// others.
void* LoadLibrary(const std::string& file, std::string& reason, const char* below = "");

/// A library of others that is loaded by the first call of one of its functions, once, by any
/// thread. A file of forwarders defines these functions under their own names, hidden, so that
/// other libraries of the process go on to call the library itself:
///
///     Tellurion::LibraryOnDemand library("libproj.so.25", "Coordinate systems need PROJ");
///     #define FORWARD_FROM library
///     FORWARD_2(proj_create)  // a function of two parameters
class TELLURION_EXPORT LibraryOnDemand {
public:
    /// `file` as the linker would note it; `need` begins the message where it is missing; `below` as
    /// for LoadLibrary.
    constexpr LibraryOnDemand(const char* file, const char* need, const char* below = "")
        : file_(file), need_(need), below_(below) {}

    /// A BUnsupportedFileTypeException where the library cannot be loaded or has no such function.
    void* Function(const char* name);

    /// Throws once more what a Function() of this process has thrown. Readers go on without a
    /// system that fails; where no system can be read at all, this makes the whole read fail.
    static void RequireAll();

private:
    [[noreturn]] void Fail(const std::string& reason) const;

    const char* file_;
    const char* need_;
    const char* below_;
    std::mutex mutex_;
    void* handle_ = nullptr;
};

template <class Function>
struct Signature;
template <class Result, class... Parameters>
struct Signature<Result(Parameters...)> {
    using Returned = Result;
    template <std::size_t index>
    using Taken = std::tuple_element_t<index, std::tuple<Parameters...>>;
};

}  // namespace Tellurion

// The parameters are those of the library's header, whatever its version.
#define TAKE(name, index) Tellurion::Signature<decltype(name)>::Taken<index> a##index
#define FORWARD(name, parameters, arguments)                                                          \
    Tellurion::Signature<decltype(name)>::Returned name parameters {                                  \
        static const auto function = reinterpret_cast<decltype(&name)>(FORWARD_FROM.Function(#name)); \
        return function arguments;                                                                    \
    }
#define FORWARD_0(name) FORWARD(name, (), ())
#define FORWARD_1(name) FORWARD(name, (TAKE(name, 0)), (a0))
#define FORWARD_2(name) FORWARD(name, (TAKE(name, 0), TAKE(name, 1)), (a0, a1))
#define FORWARD_3(name) FORWARD(name, (TAKE(name, 0), TAKE(name, 1), TAKE(name, 2)), (a0, a1, a2))
#define FORWARD_4(name) \
    FORWARD(name, (TAKE(name, 0), TAKE(name, 1), TAKE(name, 2), TAKE(name, 3)), (a0, a1, a2, a3))
#define FORWARD_5(name)                                                                        \
    FORWARD(name, (TAKE(name, 0), TAKE(name, 1), TAKE(name, 2), TAKE(name, 3), TAKE(name, 4)), \
            (a0, a1, a2, a3, a4))
#define FORWARD_6(name)                                                                                 \
    FORWARD(name,                                                                                       \
            (TAKE(name, 0), TAKE(name, 1), TAKE(name, 2), TAKE(name, 3), TAKE(name, 4), TAKE(name, 5)), \
            (a0, a1, a2, a3, a4, a5))
#define FORWARD_7(name)                                                                                \
    FORWARD(name,                                                                                      \
            (TAKE(name, 0), TAKE(name, 1), TAKE(name, 2), TAKE(name, 3), TAKE(name, 4), TAKE(name, 5), \
             TAKE(name, 6)),                                                                           \
            (a0, a1, a2, a3, a4, a5, a6))
#define FORWARD_8(name)                                                                                \
    FORWARD(name,                                                                                      \
            (TAKE(name, 0), TAKE(name, 1), TAKE(name, 2), TAKE(name, 3), TAKE(name, 4), TAKE(name, 5), \
             TAKE(name, 6), TAKE(name, 7)),                                                            \
            (a0, a1, a2, a3, a4, a5, a6, a7))
#define FORWARD_9(name)                                                                                \
    FORWARD(name,                                                                                      \
            (TAKE(name, 0), TAKE(name, 1), TAKE(name, 2), TAKE(name, 3), TAKE(name, 4), TAKE(name, 5), \
             TAKE(name, 6), TAKE(name, 7), TAKE(name, 8)),                                             \
            (a0, a1, a2, a3, a4, a5, a6, a7, a8))
#define FORWARD_10(name)                                                                               \
    FORWARD(name,                                                                                      \
            (TAKE(name, 0), TAKE(name, 1), TAKE(name, 2), TAKE(name, 3), TAKE(name, 4), TAKE(name, 5), \
             TAKE(name, 6), TAKE(name, 7), TAKE(name, 8), TAKE(name, 9)),                              \
            (a0, a1, a2, a3, a4, a5, a6, a7, a8, a9))
#define FORWARD_11(name)                                                                               \
    FORWARD(name,                                                                                      \
            (TAKE(name, 0), TAKE(name, 1), TAKE(name, 2), TAKE(name, 3), TAKE(name, 4), TAKE(name, 5), \
             TAKE(name, 6), TAKE(name, 7), TAKE(name, 8), TAKE(name, 9), TAKE(name, 10)),              \
            (a0, a1, a2, a3, a4, a5, a6, a7, a8, a9, a10))
#define FORWARD_13(name)                                                                                 \
    FORWARD(name,                                                                                        \
            (TAKE(name, 0), TAKE(name, 1), TAKE(name, 2), TAKE(name, 3), TAKE(name, 4), TAKE(name, 5),   \
             TAKE(name, 6), TAKE(name, 7), TAKE(name, 8), TAKE(name, 9), TAKE(name, 10), TAKE(name, 11), \
             TAKE(name, 12)),                                                                            \
            (a0, a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12))
