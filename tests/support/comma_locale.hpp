#pragma once

namespace vorn::test {

// Sets a locale that writes a comma for the point; false where there is no way to make one.
bool set_comma_locale();

}  // namespace vorn::test
