#include <clocale>

// Loaded before a program, this takes up the user's locale as many a host does at its
// start; so the tests run as in one.
namespace {
[[maybe_unused]] const char* const kLocale = std::setlocale(LC_ALL, "");
}
