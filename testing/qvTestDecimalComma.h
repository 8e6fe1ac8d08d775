// A locale whose numbers have a decimal comma, on any machine.
#pragma once

#include "testing/qvTestDirectory.h"
#include "testing/qvTestEnvironment.h"

#include <bit>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace qvTest {

/// The process's numbers have a decimal comma while it lives, in a locale that is compiled here, or in one of
/// the system's where nothing compiles locales.
class DecimalComma {
public:
  DecimalComma() {
    compile();
    for (const char* const name : {"comma", "de_DE.UTF-8", "German"})
      if (!isSet()) std::setlocale(LC_NUMERIC, name);
  }
  ~DecimalComma() { std::setlocale(LC_NUMERIC, "C"); }
  DecimalComma(const DecimalComma&) = delete;
  DecimalComma& operator=(const DecimalComma&) = delete;

  [[nodiscard]] bool isSet() const { return *std::localeconv()->decimal_point == ','; }

private:
  void compile() {
    const std::string source = directory_.write("source", "LC_NUMERIC\n"
                                                          "decimal_point \",\"\n"
                                                          "thousands_sep \".\"\n"
                                                          "grouping 3;3\n"
                                                          "END LC_NUMERIC\n");
    std::string characters = "CHARMAP\n";
    for (int c = 0; c < 128; ++c) {
      char line[40];
      std::snprintf(line, sizeof line, "<U%04X> \\x%02x c%d\n", c, c, c);
      characters += line;
    }
    const std::string map = directory_.write("characters", characters + "END CHARMAP\n");
    std::string command = "localedef -c --no-archive";
    command += std::endian::native == std::endian::big ? " --big-endian" : " --little-endian";
    command += " -i " + source + " -f " + map + ' ' + directory_.path("comma");
    command += " >" + directory_.path("messages") + " 2>&1";
    static_cast<void>(std::system(command.c_str())); // it warns of what is left out: its result tells nothing
  }

  Directory directory_;
  Environment path_{"LOCPATH", directory_.path().c_str()};
};

} // namespace qvTest
