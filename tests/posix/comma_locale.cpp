#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

bool set_comma_locale() {
  std::string folder = testing::TempDir() + "vornscript_locale.XXXXXX";
  setenv("LOCPATH", mkdtemp(folder.data()), 1);
  const bool is_set =
      std::system(
          "printf 'LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \"\"\nEND LC_NUMERIC' |"
          "localedef -c -i /dev/stdin \"$LOCPATH/comma\" 2>/dev/null") != -1 &&
      std::setlocale(LC_NUMERIC, "comma");
  unsetenv("LOCPATH");
  std::filesystem::remove_all(folder);
  return is_set;
}
