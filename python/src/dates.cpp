// SPDX-License-Identifier: MIT
// Date and time texts between the library's layouts (fsDateTime), with the
// library's complaints raised as DateError instead of printed.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <optional>
#include <string>

#include "datetime/conversion_internal.h"
#include "python/src/bindings.h"
#include "python/src/errors.h"
#include "python/src/messages.h"

namespace py = pybind11;

namespace fskit::python {
namespace {

std::string convertDate(const std::optional<std::string> &text, int32_t inLayout,
                        int32_t outLayout, const std::optional<std::string> &separators,
                        bool useNow) {
  if ((text && text->find('\0') != std::string::npos) ||
      (separators && separators->find('\0') != std::string::npos))
    raise("DateError", py::make_tuple("a date text cannot hold a NUL character"));
  char output[61] = "";  // the longest text any layout writes, and its NUL
  std::string problems;
  int32_t written;
  {
    py::gil_scoped_release unlocked;
    written = datetime::convertDateTime(inLayout, text ? text->c_str() : nullptr, outLayout,
                                        output, separators ? separators->c_str() : nullptr,
                                        useNow ? 1 : 0, &problems);
  }
  forwardLibraryMessages();
  if (written == 1) return output;
  while (!problems.empty() && problems.back() == '\n') problems.pop_back();
  for (size_t at = problems.find('\n'); at != std::string::npos; at = problems.find('\n', at))
    problems.replace(at, 1, "; ");
  raise("DateError", py::make_tuple(problems.empty() ? "cannot convert the date" : problems));
}

}  // namespace

void addDates(py::module_ &module) {
  module.def("convert_date", &convertDate, py::arg("text"), py::arg("in_layout"),
             py::arg("out_layout"), py::arg("separators") = py::none(),
             py::arg("use_now") = false,
             R"(Converts a date/time text from one of the library's layouts to another.

Input layouts: 0 month/day/year, 1 year/month/day, 2 day-MON-yy,
3 day-MON-yyyy, 4 the asctime text, 5 hour:minute:second, 6 the stamp
yyyymmddhhmmss+zzzz, 7 day-MON-yy hh:mm:ss, 8 day-MON-yyyy hh:mm:ss,
9 seconds since 1970 (UTC), 10 "Www Mmm dd yy hh:mm:ss AM",
11 "dd Mmm yy  hh:mm AM". Output layouts: 0 " 3/07/98", 1 "98-03-07",
2 " 7-MAR-98", 3 " 7-MAR-1998", 4 "Sat Mar 07 14:05:09 1998", 5 "14:05:09",
6 "19980307140509+0000", 7 " 7-MAR-98 14:05:09", 8 " 7-MAR-1998 14:05:09",
9 seconds since 1970 of the date as local time, 10 "Sat Mar 07 1998 02:05:09 PM".
`text` None converts the current local time. `separators`: None for each
layout's own, "NONE" for fixed-width digits, else up to 4 characters.
`use_now`: fields the input lacks come from the current time, and an
unreadable input is replaced by it. DateError (a ValueError) with the
library's message when the input cannot be read or a layout does not exist.)");
}

}  // namespace fskit::python
