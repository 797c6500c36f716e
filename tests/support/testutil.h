// Helpers shared by the test programs: standard-error capture and assertion-report matchers.
#ifndef TEVBASE_TESTS_TESTUTIL_H
#define TEVBASE_TESTS_TESTUTIL_H

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace testutil {

// Redirects descriptor 2 into a temporary file until Release() (or destruction).
class StderrCapture {
public:
    StderrCapture()
    {
        std::fflush(stderr);
        file_ = std::tmpfile();
        saved_ = dup(2);
        dup2(fileno(file_), 2);
    }
    ~StderrCapture()
    {
        Release();
        std::fclose(file_);
    }
    // Restores standard error and returns everything written meanwhile.
    std::string Release()
    {
        if (saved_ >= 0) {
            std::fflush(stderr);
            dup2(saved_, 2);
            close(saved_);
            saved_ = -1;
            std::rewind(file_);
            int c;
            while ((c = std::fgetc(file_)) != EOF)
                text_ += static_cast<char>(c);
        }
        return text_;
    }

private:
    std::FILE* file_;
    int saved_;
    std::string text_;
};

// s with every regular-expression character escaped, for death-test patterns.
inline std::string RegexQuote(const std::string& s)
{
    std::string out;
    for (char c : s) {
        if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos)
            out += '\\';
        out += c;
    }
    return out;
}

// Death-test pattern for a standard error that is exactly `text`. Under qemu-user (the ARM test run)
// a target killed by a signal also gets "qemu: uncaught target signal 6 (Aborted) - core dumped" on
// standard error: the pattern allows that line after the text. Anchor death-test patterns at the end
// only through this.
inline std::string ExactStderr(const std::string& text)
{
    return "^" + RegexQuote(text) + "(qemu: uncaught target signal .*)?$";
}

// Pattern of the standard assertion report "file:line: signature: Assertion `expr' failed." The
// signature is checked with g++, whose spelling of function signatures the reports promise.
inline std::string AssertionPattern(const std::string& file, const std::string& signature, const std::string& expr)
{
#if defined(__GNUC__) && !defined(__clang__)
    const std::string sig = RegexQuote(signature);
#else
    (void)signature;
    const std::string sig = ".*";
#endif
    return RegexQuote(file) + ":[0-9]+: " + sig + ": Assertion .?" + RegexQuote(expr) + ".? failed";
}

} // namespace testutil

#endif
