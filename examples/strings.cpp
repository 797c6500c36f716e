// Strings and exceptions: building, sharing, trimming and reading text, and reporting a failure.
#include <tevbase.h>

#include <iostream>
#include <sstream>

namespace {

// Reads "key = value" lines; a line without '=' is a failure with its line number as detail.
void ReadSettings(std::istream& in)
{
    String_t line;
    for (int number = 1; String_t::Getline(in, line, "\n"); ++number) {
        const char* text = line.Text();
        const char* eq = std::strchr(text, '=');
        if (eq == nullptr)
            throw Except("missing '='", String_t("line ") + std::to_string(number).c_str(), __FILE__, __LINE__);
        const String_t key = line.SubStr(0, static_cast<unsigned>(eq - text) - 1).Trim();
        const String_t value = String_t(eq + 1).Trim();
        std::cout << "  " << key.Toupper() << " -> [" << value << "]\n";
    }
}

} // namespace

int main()
{
    String_t greeting("hello");
    String_t copy = greeting; // shares the text
    copy += ", world";        // detaches first
    std::cout << greeting << " | " << copy << '\n';

    std::istringstream settings("name = libtevbase\n  colour=  blue \nbroken line\n");
    try {
        ReadSettings(settings);
    } catch (const Except& e) {
        std::cout << "error: " << e.ToString() << '\n';
    }
    return 0;
}
