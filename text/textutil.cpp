// Small text and number utilities.
#include <tevbase/textutil.h>

#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

String_t UrlEncode(const char* s)
{
    if (s == nullptr)
        return String_t();
    static const char hex[] = "0123456789abcdef";
    std::string out;
    out.reserve(std::strlen(s));
    for (; *s != '\0'; ++s) {
        const unsigned char c = static_cast<unsigned char>(*s);
        if (std::isalnum(c) || std::strchr("*-._", c) != nullptr) {
            out += static_cast<char>(c);
        } else {
            out += '%';
            out += hex[c >> 4];
            out += hex[c & 15];
        }
    }
    return String_t(out.c_str());
}

String_t UrlDecode(const char* s)
{
    if (s == nullptr)
        return String_t();
    std::string out;
    out.reserve(std::strlen(s));
    while (*s != '\0') {
        if (*s != '%' || s[1] == '\0' || s[2] == '\0') {
            out += *s++;
            continue;
        }
        // The two characters go to sscanf as they are: it skips blanks, takes a sign or a "0x", and
        // stops at a non-digit. Nothing read leaves 2, the count of characters taken (kept: callers
        // rely on the old result).
        const char two[3] = {s[1], s[2], '\0'};
        unsigned int byte;
        if (std::sscanf(two, "%x", &byte) != 1)
            byte = 2;
        out += static_cast<char>(byte);
        s += 3;
    }
    return String_t(out.c_str()); // a decoded zero byte ends the text
}

extern "C" {

char* cfname(char* name, char* base, const char* ext)
{
    if (name != nullptr) {
        const char* slash = std::strrchr(name, '/');
        const char* dot = std::strrchr(slash != nullptr ? slash + 1 : name, '.');
        if (dot != nullptr) {
            if (base != nullptr) {
                const std::size_t n = static_cast<std::size_t>(dot - name);
                std::memmove(base, name, n);
                base[n] = '\0';
            }
            return base;
        }
    }
    if (base != nullptr && name != nullptr)
        std::memmove(base, name, std::strlen(name) + 1);
    if (ext != nullptr && name != nullptr)
        std::strcat(name, ext);
    return name;
}

int fname_match(const char* pattern, const char* name)
{
    const char* p = pattern != nullptr ? pattern : "";
    const char* n = name != nullptr ? name : "";
    // Backtracking to the last '*' only: it gives the answer of trying the rest of the pattern at each
    // later position of the name, in time proportional to the product of the lengths.
    const char* star = nullptr; // pattern after the last '*' seen
    const char* retry = nullptr; // where the run of that '*' ends so far
    while (*n != '\0') {
        if (*p == '*') {
            star = ++p;
            retry = n;
        } else if (*p == '?' || (*p != '\0' && *p == *n)) {
            ++p;
            ++n;
        } else if (star != nullptr) {
            p = star;
            n = ++retry;
        } else {
            return -1;
        }
    }
    while (*p == '*')
        ++p;
    return *p == '\0' ? 0 : -1;
}

int gcd(int a, int b)
{
    if (a < 1)
        return b;
    // By repeated subtraction, a negative b would grow a until it wraps negative, leaving b.
    if (b < 0)
        return b;
    // And b == 0 never changes a: the call never returns (deliberate; callers never pass 0).
    if (b == 0)
        for (;;)
            pause();
    while (b != 0) {
        const int r = a % b;
        a = b;
        b = r;
    }
    return a;
}

int mth_round(double x)
{
    return x >= 0 ? static_cast<int>(x + 0.5) : -static_cast<int>(0.5 - x);
}

char* getuname(void)
{
    static char name[40];
    const std::time_t now = std::time(nullptr);
    const std::tm* t = std::localtime(&now);
    if (t != nullptr)
        std::snprintf(name, sizeof name, "%2.2d%3.3d%2.2d%2.2d%2.2d", t->tm_year, t->tm_yday, t->tm_hour,
                      t->tm_min, t->tm_sec);
    return name;
}

} // extern "C"
