// SPDX-License-Identifier: MIT
// sort_file: the library's external sort of a text file, through its internal
// entry point, which tells a failure from an empty file, says why, and hands
// its progress lines to the caller instead of standard output.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <optional>
#include <string>
#include <vector>

#include "python/src/bindings.h"
#include "python/src/errors.h"
#include "python/src/messages.h"
#include "sort/file_sort_internal.h"

namespace py = pybind11;

namespace fskit::python {
namespace {

struct Progress {
  std::vector<std::string> lines;
  std::vector<bool> problems;
};

void keepProgress(void *context, const char *line, bool problem) {
  auto *progress = static_cast<Progress *>(context);
  progress->lines.emplace_back(line != nullptr ? line : "");
  progress->problems.push_back(problem);
}

std::string pathText(const py::object &path) {
  return py::str(py::module_::import("os").attr("fsdecode")(path));
}

long sortFile(const py::object &source, const py::object &destination, bool unique, bool counts,
              std::optional<long> bufferSize, const std::optional<py::object> &workDir) {
  std::string input = pathText(source), output = pathText(destination);
  std::string prefix = workDir ? pathText(*workDir) : "";
  if (!prefix.empty() && prefix.back() != '/') prefix += '/';
  if (bufferSize && *bufferSize <= 0)
    raiseBuiltin(PyExc_ValueError, "buffer_size must be positive");
  Progress progress;
  sort::FileSortRequest request;
  request.input = input.c_str();
  request.output = output.c_str();
  request.prefix = prefix.c_str();
  request.bufferSize = bufferSize.value_or(0);
  request.keepDuplicates = !unique;
  request.withCounts = counts;
  request.progress = keepProgress;
  request.progressContext = &progress;
  request.replaceOutput = true;
  sort::FileSortResult result;
  {
    py::gil_scoped_release unlocked;
    result = sort::sortFile(request);
  }
  forwardLibraryMessages();
  py::object logger = py::module_::import("logging").attr("getLogger")("fskit");
  for (size_t i = 0; i < progress.lines.size(); ++i)
    logger.attr("log")(progress.problems[i] ? 30 : 20, "sort: %s", progress.lines[i]);
  if (result.outcome == sort::FileSortOutcome::kComplete) return result.lines;
  std::string reason = result.reason[0] != '\0' ? result.reason : "the sort failed";
  if (result.outcome == sort::FileSortOutcome::kIncomplete)
    reason = "the sort stopped early: " + reason;
  raise("SortError", py::make_tuple(reason));
}

}  // namespace

void addSortFile(py::module_ &module) {
  module.def("sort_file", &sortFile, py::arg("src"), py::arg("dst"), py::arg("unique") = false,
             py::arg("counts") = false, py::arg("buffer_size") = py::none(),
             py::arg("work_dir") = py::none(),
             R"(Sorts the lines of the text file `src` into `dst`; returns the lines written.

Lines compare as unsigned bytes. `unique`: equal lines once, empty lines
dropped; `counts`: each line followed by " <count>" (counted per chunk).
`buffer_size`: bytes sorted in memory at a time (default: the whole file, at
most 2 GiB); a larger file goes through work files in `work_dir` (default:
the current directory). `dst` is replaced only when the sort is complete. The
interpreter lock is released while it runs; progress lines go to the logger
"fskit". SortError (an OSError) with the library's reason when the sort fails
or stops early.)");
}

}  // namespace fskit::python
