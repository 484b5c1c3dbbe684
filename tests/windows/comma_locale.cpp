#include <clocale>

bool set_comma_locale() { return std::setlocale(LC_NUMERIC, "German") != nullptr; }
