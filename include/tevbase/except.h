// Except: the general exception class.
#ifndef TEVBASE_EXCEPT_H
#define TEVBASE_EXCEPT_H

#include <tevbase/config.h>
#include <tevbase/string.h>

// A run-time failure: a message (a literal, not owned), an optional detail and optionally the source
// file and line of the throw. ToString() gives "message, detail, thrown in file:line" with each absent
// part left out; a null message gives the empty text.
class TEVBASE_API Except {
public:
    Except();
    explicit Except(const char* message);
    Except(const char* message, const String_t& detail);
    Except(const char* message, const char* file, int line);
    Except(const char* message, const String_t& detail, const char* file, int line);
    Except(const Except&) = default;
    Except& operator=(const Except&) = default;

    virtual String_t ToString() const;
    // Leaves message null and line -1: a destroyed exception reads as empty.
    virtual ~Except();

    const char* Message() const { return message_; }
    const String_t& Detail() const { return detail_; }
    const String_t& File() const { return file_; }
    int Line() const { return line_; }

private:
    const char* message_;
    String_t detail_;
    String_t file_;
    int32_t line_;
};

#endif
