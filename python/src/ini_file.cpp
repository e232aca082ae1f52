// SPDX-License-Identifier: MIT
// IniFile: a lossless INI document as a Python mapping of paragraphs, each a
// mapping of topics to values. Every byte the program does not change is
// written back as it was read; save() replaces the file only once the whole
// new text is written.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>

#include "ini/lossless.h"
#include "python/src/bindings.h"
#include "python/src/errors.h"
#include "python/src/messages.h"

namespace py = pybind11;
using fskit::ini::lossless::Document;

namespace fskit::python {
namespace {

// Texts in the file may be any bytes: they reach Python as str with the
// bytes that are not UTF-8 kept as surrogates, and go back the same way.
py::str toText(const std::string &bytes) {
  PyObject *text = PyUnicode_DecodeUTF8(bytes.data(), Py_ssize_t(bytes.size()), "surrogateescape");
  if (text == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::str>(text);
}

std::string toBytes(const py::handle &text, const char *what) {
  if (!py::isinstance<py::str>(text))
    raiseBuiltin(PyExc_TypeError, std::string(what) + " must be a str, not " +
                                      std::string(py::str(text.get_type().attr("__name__"))));
  py::object bytes = py::reinterpret_steal<py::object>(
      PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape"));
  if (!bytes) throw py::error_already_set();
  return std::string(py::bytes(bytes));
}

// Texts the line layout cannot hold whole are refused rather than written
// as something else: the tool's rules, and no NUL (the C functions would
// stop there).
void checkSettable(const std::string &paragraph, const std::string &topic,
                   const std::string &value) {
  if ((paragraph + topic + value).find('\0') != std::string::npos)
    raiseBuiltin(PyExc_ValueError, "INI names and values cannot hold a NUL character");
  if (auto why = ini::lossless::refusal(paragraph, topic, value, ""))
    raiseBuiltin(PyExc_ValueError, *why);
  if (ini::lossless::readBack(topic, value) != value)
    raiseBuiltin(PyExc_ValueError, "the value '" + value +
                                       "' would not read back whole (blanks at its ends, or a "
                                       "';' that starts a comment)");
}

struct IniFile {
  std::string path;
  Document document;
};

struct Paragraph {
  std::shared_ptr<IniFile> file;
  std::string name;

  std::optional<std::string> value(const std::string &topic) const {
    return file->document.value(name, topic);
  }
};

bool exists(const std::string &path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0;
}

std::shared_ptr<IniFile> openIni(const py::object &pathLike, bool create) {
  std::string path = py::str(py::module_::import("os").attr("fsdecode")(pathLike));
  auto file = std::make_shared<IniFile>();
  file->path = path;
  std::string problem;
  std::optional<Document> document;
  bool missing;
  {
    py::gil_scoped_release unlocked;
    missing = !exists(path);
    if (!missing) document = Document::readFile(path.c_str(), &problem);
  }
  if (missing && create) return file;
  if (missing) raiseOSError(ENOENT, "No such INI file", path);
  if (!document) raiseOSError(EIO, problem, path);
  file->document = std::move(*document);
  return file;
}

Paragraph paragraphOf(const std::shared_ptr<IniFile> &file, const std::string &name) {
  for (const std::string &present : file->document.paragraphs())
    if (present == name) return {file, name};
  throw py::key_error(name);
}

void setValue(Paragraph &paragraph, const std::string &topic, const py::handle &given) {
  std::string value = toBytes(given, "an INI value");
  checkSettable(paragraph.name, topic, value);
  paragraph.file->document.setValue(paragraph.name, topic, value, "");
}

void save(IniFile &file, const std::optional<py::object> &to) {
  std::string path = to ? std::string(py::str(py::module_::import("os").attr("fsdecode")(*to)))
                        : file.path;
  Document copy = file.document;  // other threads may go on changing the original
  std::string problem;
  bool written;
  {
    py::gil_scoped_release unlocked;
    errno = 0;
    written = copy.writeFile(path.c_str(), &problem);
  }
  int error = errno;
  if (written) return;
  if (problem.empty()) problem = "cannot write the INI file";
  raiseOSError(error != 0 ? error : EIO, problem, path);
}

}  // namespace

void addIniFile(py::module_ &module) {
  py::class_<Paragraph>(module, "IniParagraph",
                        "One paragraph of an IniFile: a mapping of topics to values (str).")
      .def_property_readonly("name", [](const Paragraph &p) { return toText(p.name); },
                             "The paragraph's name.")
      .def("__getitem__",
           [](const Paragraph &p, const py::str &topic) {
             auto value = p.value(toBytes(topic, "a topic"));
             if (!value) throw py::key_error(std::string(topic));
             return toText(*value);
           },
           "The value of a topic; KeyError when the paragraph has none.")
      .def("get",
           [](const Paragraph &p, const py::str &topic, py::object fallback) -> py::object {
             auto value = p.value(toBytes(topic, "a topic"));
             return value ? py::object(toText(*value)) : fallback;
           },
           py::arg("topic"), py::arg("default") = py::none(),
           "The value of a topic, or `default`.")
      .def("__contains__",
           [](const Paragraph &p, const py::object &topic) {
             return py::isinstance<py::str>(topic) && p.value(toBytes(topic, "a topic"));
           },
           "Whether the paragraph has a value for the topic.")
      .def("__setitem__", &setValue,
           "Sets a value: the topic's line is rewritten, or a line added after the paragraph's "
           "last topic. Every other line stays as it is.")
      .def("__delitem__",
           [](Paragraph &p, const py::str &topic) {
             if (!p.file->document.removeTopic(p.name, toBytes(topic, "a topic")))
               throw py::key_error(std::string(topic));
           },
           "Removes the topic's line.")
      .def("__iter__",
           [](const Paragraph &p) {
             py::list names;
             for (const std::string &topic : p.file->document.topics(p.name))
               names.append(toText(topic));
             return py::iter(names);
           },
           "The topics, in file order.")
      .def("__len__", [](const Paragraph &p) { return p.file->document.topics(p.name).size(); })
      .def("keys", [](const Paragraph &p) {
             py::list names;
             for (const std::string &topic : p.file->document.topics(p.name))
               names.append(toText(topic));
             return names;
           }, "The topics, in file order.")
      .def("items", [](const Paragraph &p) {
             py::list items;
             for (const std::string &topic : p.file->document.topics(p.name)) {
               auto value = p.value(topic);
               items.append(py::make_tuple(toText(topic), value ? py::object(toText(*value)) : py::none()));
             }
             return items;
           }, "(topic, value) pairs in file order; a topic line without '=' has the value None.")
      .def("__repr__", [](const Paragraph &p) { return "<IniParagraph [" + p.name + "]>"; });

  py::class_<IniFile, std::shared_ptr<IniFile>>(module, "IniFile", R"(An INI file, kept byte for byte.

IniFile(path) reads the file (FileNotFoundError when it is missing, unless
create=True, which starts from an empty document). ini["Paragraph"]["topic"]
reads a value, assignment sets one, del removes a topic or a whole paragraph;
iteration gives the paragraphs in file order. Lookups find the first
paragraph and the first topic of a name, as the library's C functions do.
Nothing is written until save(), which replaces the file only once the whole
new text is written; comments, blank lines, line ends and every unchanged
line stay as they were. As a context manager the file is not saved on leaving
the block.)")
      .def(py::init(&openIni), py::arg("path"), py::arg("create") = false)
      .def_readonly("path", &IniFile::path, "The file's path.")
      .def("__enter__", [](py::object self) { return self; })
      .def("__exit__", [](IniFile &, py::args) { return false; },
           "Leaves the block without saving.")
      .def("__getitem__",
           [](const std::shared_ptr<IniFile> &file, const py::str &name) {
             return paragraphOf(file, toBytes(name, "a paragraph"));
           },
           "The paragraph of that name; KeyError when there is none.")
      .def("get",
           [](const std::shared_ptr<IniFile> &file, const py::str &name, py::object fallback) {
             std::string bytes = toBytes(name, "a paragraph");
             for (const std::string &present : file->document.paragraphs())
               if (present == bytes) return py::cast(Paragraph{file, bytes});
             return fallback;
           },
           py::arg("paragraph"), py::arg("default") = py::none(),
           "The paragraph of that name, or `default`.")
      .def("__contains__",
           [](const std::shared_ptr<IniFile> &file, const py::object &name) {
             if (!py::isinstance<py::str>(name)) return false;
             std::string bytes = toBytes(name, "a paragraph");
             for (const std::string &present : file->document.paragraphs())
               if (present == bytes) return true;
             return false;
           })
      .def("__setitem__",
           [](const std::shared_ptr<IniFile> &file, const py::str &name, const py::dict &values) {
             Paragraph paragraph{file, toBytes(name, "a paragraph")};
             if (values.empty()) checkSettable(paragraph.name, "topic", "");
             for (auto [topic, value] : values)
               setValue(paragraph, toBytes(topic, "a topic"), value);
           },
           "Sets every topic of a dict in the paragraph (made at the end of the file when new).")
      .def("__delitem__",
           [](IniFile &file, const py::str &name) {
             if (!file.document.removeParagraph(toBytes(name, "a paragraph")))
               throw py::key_error(std::string(name));
           },
           "Removes the first paragraph of that name: its header and its lines.")
      .def("__iter__",
           [](const IniFile &file) {
             py::list names;
             for (const std::string &name : file.document.paragraphs()) names.append(toText(name));
             return py::iter(names);
           },
           "The paragraph names, in file order.")
      .def("__len__", [](const IniFile &file) { return file.document.paragraphs().size(); })
      .def("keys",
           [](const IniFile &file) {
             py::list names;
             for (const std::string &name : file.document.paragraphs()) names.append(toText(name));
             return names;
           },
           "The paragraph names, in file order.")
      .def("__bytes__", [](const IniFile &file) { return py::bytes(file.document.text()); },
           "The document's bytes, as save() writes them.")
      .def("save", &save, py::arg("path") = py::none(),
           "Writes the document to its file (or to `path`): the file is replaced only "
           "once the complete new text is written, so a failure leaves it as it was. "
           "OSError with the library's message when it cannot be written.")
      .def("__repr__", [](const IniFile &file) { return "<IniFile '" + file.path + "'>"; });
}

}  // namespace fskit::python
