// AutoArr<T>: owning pointer to an array made with new[].
#ifndef TEVBASE_AUTOARR_H
#define TEVBASE_AUTOARR_H

#include <tevbase/config.h>

// Holds an array from new[] (or null) and frees it with delete[]. Copying transfers ownership: the
// source is left null.
template <class T> class TEVBASE_API AutoArr {
public:
    explicit AutoArr(T* p = nullptr) : p_(p) {}
    AutoArr(AutoArr& other) : p_(other.Release()) {}
    ~AutoArr() { delete[] p_; }

    AutoArr& operator=(AutoArr& other)
    {
        if (&other != this) {
            delete[] p_;
            p_ = other.Release();
        }
        return *this;
    }
    AutoArr& operator=(T* p)
    {
        Reset(p);
        return *this;
    }
    // Frees the held array and holds p; holding p already does nothing.
    void Reset(T* p = nullptr)
    {
        if (p != p_) {
            delete[] p_;
            p_ = p;
        }
    }
    // Gives up ownership without freeing.
    T* Release()
    {
        T* p = p_;
        p_ = nullptr;
        return p;
    }

    T* Get() const { return p_; }
    T* GetArrp() const { return p_; }
    operator T*() const { return p_; }
    T& operator[](int i) const { return p_[i]; }
    bool operator!() const { return p_ == nullptr; }

private:
    T* p_;
};

extern template class AutoArr<char>;

#endif
