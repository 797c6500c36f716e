// Reference-counted counted bytes.
#include <tevbase/bytestring.h>
#include <tevbase/pool.h>

#include <cstring>
#include <memory>
#include <new>

namespace {

Pool srep_pool;
constexpr unsigned kSrepBlock = 8192;

using Array = std::unique_ptr<char[]>;

uint32_t checked_sum(uint32_t a, uint32_t b)
{
    if (b > 0xFFFFFFFFu - a)
        throw std::bad_alloc();
    return a + b;
}

void copy(char* dst, const void* src, std::size_t n)
{
    if (n != 0)
        std::memcpy(dst, src, n);
}

// A copy of the bytes with change(c) applied to each byte before the first zero.
template <class F> ByteString mapped(const char* data, uint32_t size, F change)
{
    ByteString out(data, size);
    char* p = const_cast<char*>(out.Data()); // our own, fresh array
    for (uint32_t i = 0; i < size && p[i] != '\0'; ++i)
        p[i] = change(p[i]);
    return out;
}

} // namespace

void* ByteString::Srep::operator new(std::size_t size)
{
    return srep_pool.New(size, sizeof(Srep), kSrepBlock);
}

void ByteString::Srep::operator delete(void* p, std::size_t size)
{
    srep_pool.Delete(p, size, sizeof(Srep));
}

void ByteString::Free(Srep* rep) noexcept
{
    delete[] rep->data;
    delete rep;
}

ByteString::ByteString() : rep_(new Srep{nullptr, 0, 1}) {}

ByteString::ByteString(const void* p, unsigned n) : ByteString(p != nullptr ? n : 0, p, n, '\0') {}

ByteString::ByteString(unsigned n) : rep_(nullptr)
{
    Array a(n != 0 ? new char[n] : nullptr);
    rep_ = new Srep{a.get(), n, 1};
    a.release();
}

ByteString::ByteString(unsigned n, char c) : ByteString(n, nullptr, 0, c) {}

ByteString::ByteString(unsigned n, const void* p, unsigned m, char c) : rep_(nullptr)
{
    Array a(n != 0 ? new char[n] : nullptr);
    const unsigned copied = p != nullptr ? (m < n ? m : n) : 0;
    copy(a.get(), p, copied);
    if (n != copied)
        std::memset(a.get() + copied, c, n - copied);
    rep_ = new Srep{a.get(), n, 1};
    a.release();
}

ByteString& ByteString::operator=(const ByteString& other) noexcept
{
    ++other.rep_->count; // first, so that b = b keeps the representation alive
    if (--rep_->count == 0)
        Free(rep_);
    rep_ = other.rep_;
    return *this;
}

ByteString& ByteString::Join(bool front, const void* p, char c, unsigned n)
{
    const uint32_t old = rep_->size, total = checked_sum(old, n);
    if (total == 0)
        return *this;
    // The new array is complete before the old one goes: a failed allocation changes nothing.
    Array a(new char[total]);
    char* const added = front ? a.get() : a.get() + old;
    copy(front ? a.get() + n : a.get(), rep_->data, old);
    if (p != nullptr)
        copy(added, p, n);
    else
        std::memset(added, c, n);
    if (rep_->count < 2) {
        delete[] rep_->data;
    } else {
        Srep* fresh = new Srep{nullptr, 0, 1};
        --rep_->count;
        rep_ = fresh;
    }
    rep_->data = a.release();
    rep_->size = total;
    return *this;
}

ByteString& ByteString::Append(const void* p, unsigned n)
{
    return p != nullptr ? Join(false, p, '\0', n) : *this;
}

ByteString& ByteString::Append(char c, unsigned n)
{
    return Join(false, nullptr, c, n);
}

ByteString& ByteString::Prepend(const void* p, unsigned n)
{
    return p != nullptr ? Join(true, p, '\0', n) : *this;
}

ByteString& ByteString::Prepend(char c, unsigned n)
{
    return Join(true, nullptr, c, n);
}

void ByteString::Erase(char c)
{
    if (rep_->data != nullptr)
        std::memset(rep_->data, c, rep_->size);
}

char* ByteString::Reserve(unsigned n)
{
    char* fresh = n != 0 ? new char[n] : nullptr;
    delete[] rep_->data;
    rep_->data = fresh;
    rep_->size = n;
    return fresh;
}

void ByteString::Redefine(void* p, unsigned n)
{
    char* bytes = static_cast<char*>(p);
    if (bytes != rep_->data)
        delete[] rep_->data;
    if (n == 0) {
        delete[] bytes;
        bytes = nullptr;
    }
    rep_->data = bytes;
    rep_->size = bytes != nullptr ? n : 0;
}

char* ByteString::Save() const
{
    if (rep_->data == nullptr)
        return nullptr;
    char* out = new char[rep_->size];
    std::memcpy(out, rep_->data, rep_->size);
    return out;
}

ByteString ByteString::SubStr(unsigned from, unsigned to) const
{
    if (rep_->data == nullptr || to < from || from >= rep_->size)
        return ByteString();
    const uint64_t wanted = uint64_t(to) - from + 1, rest = rep_->size - from;
    return ByteString(rep_->data + from, static_cast<unsigned>(wanted < rest ? wanted : rest));
}

ByteString ByteString::Subst(char from, char to) const
{
    return mapped(rep_->data, rep_->size, [from, to](char c) { return c == from ? to : c; });
}

ByteString ByteString::Subst(const void* set, unsigned n, char to) const
{
    if (set == nullptr || n == 0)
        return ByteString(rep_->data, rep_->size);
    return mapped(rep_->data, rep_->size,
                  [set, n, to](char c) { return std::memchr(set, static_cast<unsigned char>(c), n) ? to : c; });
}

bool operator==(const ByteString& a, const ByteString& b)
{
    if (a.Data() == nullptr || b.Data() == nullptr)
        return a.Data() == b.Data();
    const uint32_t n = a.Size() < b.Size() ? a.Size() : b.Size();
    return std::memcmp(a.Data(), b.Data(), n) == 0;
}
