#include "tests/support/comma_locale.hpp"

#include <clocale>

bool vorn::test::set_comma_locale() { return std::setlocale(LC_NUMERIC, "German") != nullptr; }
