// Except, ObjectBase and AutoArr<char>.
#include <tevbase/autoarr.h>
#include <tevbase/except.h>
#include <tevbase/objectbase.h>

#include <cstdio>
#include <cstring>
#include <string>

#ifdef NDEBUG
#error "libtevbase keeps its assertions: never build it with NDEBUG"
#endif

template class AutoArr<char>;

Except::Except() : message_("unknown"), line_(-1) {}

Except::Except(const char* message) : message_(message), line_(-1) {}

Except::Except(const char* message, const String_t& detail) : message_(message), detail_(detail), line_(-1) {}

Except::Except(const char* message, const char* file, int line) : message_(message), file_(file), line_(line) {}

Except::Except(const char* message, const String_t& detail, const char* file, int line)
    : message_(message), detail_(detail), file_(file), line_(line)
{
}

Except::~Except()
{
    message_ = nullptr;
    line_ = -1;
}

String_t Except::ToString() const
{
    if (message_ == nullptr)
        return String_t();
    std::string text(message_);
    if (detail_.Length() != 0) {
        text += ", ";
        text += detail_.Chars();
    }
    if (file_.Length() != 0 && line_ >= 0) {
        char num[16];
        std::snprintf(num, sizeof num, "%d", static_cast<int>(line_));
        text += ", thrown in ";
        text += file_.Chars();
        text += ':';
        text += num;
    }
    return String_t(text.c_str(), static_cast<unsigned>(text.size()));
}

ObjectBase::~ObjectBase() = default;

bool ObjectBase::IsA(const char* name) const
{
    return name != nullptr && std::strcmp(name, TypeName()) == 0;
}
