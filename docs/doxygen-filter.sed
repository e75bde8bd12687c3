# What a header need not repeat. Copies are plain where they are declared in one line,
# and failures, and arguments of a format, are made alike: that sentence is written once, here.
/^    B[A-Za-z]+& operator=\(const B[A-Za-z]+&( other)?\)( noexcept)?( = default)?;$/d
/^    (explicit )?(B[A-Za-z]+)\(const \2&( other)?\)( noexcept)?( = default)?;$/d
/^    B[A-Za-z]+Exception& operator=\($/,/;$/d
s|^    B[A-Za-z]+Exception\(.*source,.*|    /// Of the operation \\a source, with the detail that distinguishes this failure; the message, unless given, is the class's own.\n&|
s|^    explicit B[A-Za-z]+Exception\(.*message\);|    /// Of that message alone.\n&|
s|^    B[A-Za-z]+Exception\(\);|    /// Of the class's message alone.\n&|
s#^    template <class T, .*is_(integral|enum).*#    /// Holds \a value.\n&#
s#^    FormatArgument\((double|float|const|std).*#    /// Holds what it is given.\n&#
