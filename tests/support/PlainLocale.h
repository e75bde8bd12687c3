#pragma once

#include <locale.h>

/// While one lives, the C library's functions speak the locale "C" in this thread; for
/// tests that compare with them.
class PlainLocale {
public:
    PlainLocale() : plain_(newlocale(LC_ALL_MASK, "C", nullptr)), before_(uselocale(plain_)) {}
    ~PlainLocale() {
        uselocale(before_);
        freelocale(plain_);
    }
    PlainLocale(const PlainLocale&) = delete;
    PlainLocale& operator=(const PlainLocale&) = delete;

private:
    locale_t plain_;
    locale_t before_;
};
