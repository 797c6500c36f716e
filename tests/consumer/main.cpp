// A program outside the source tree, built against the installed library: one use of each kind of
// interface (C function, pooled class, class with a vtable thrown across the boundary, template
// instance).
#include <tevbase.h>

#include <cstdio>
#include <cstring>

int main()
{
    int failures = 0;
    auto check = [&failures](bool ok, const char* what) {
        if (!ok) {
            std::fprintf(stderr, "consumer: %s failed\n", what);
            ++failures;
        }
    };

    const String_t name("consumer");
    String_t text = name;
    text += " links libtevbase";
    check(name == "consumer" && text == "consumer links libtevbase", "String_t");

    AutoArr<char> saved(text.Save());
    check(std::strcmp(saved.Get(), text.Text()) == 0, "AutoArr<char>");

    try {
        throw Except("failed", text, "main.cpp", 7);
    } catch (const ObjectBase&) {
        check(false, "catch by unrelated type");
    } catch (const Except& e) {
        check(e.ToString() == "failed, consumer links libtevbase, thrown in main.cpp:7", "Except");
    }

    check(mth_round(-2.5) == -3 && mth_round(2.5) == 3, "mth_round");

    std::printf("consumer: %s\n", failures == 0 ? "ok" : "FAILED");
    return failures == 0 ? 0 : 1;
}
