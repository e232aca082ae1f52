// SPDX-License-Identifier: MIT
// decode() and encode(): whole buffers of foreign numbers to numpy arrays
// and back, through the library's array converters (numformat/arrays_internal.h),
// without the interpreter lock.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <optional>
#include <string>
#include <vector>

#include "numformat/arrays_internal.h"
#include "python/src/bindings.h"
#include "python/src/errors.h"
#include "python/src/number_formats.h"

namespace py = pybind11;
using fskit::numformat::ArrayFormat;

namespace fskit::python {
namespace {

// A buffer held for the length of a call (released by the destructor).
class HeldBuffer {
 public:
  HeldBuffer(const py::handle &object, bool writable, const char *what) {
    if (PyObject_GetBuffer(object.ptr(), &view_, writable ? PyBUF_WRITABLE : PyBUF_SIMPLE) != 0) {
      PyErr_Clear();
      raiseBuiltin(PyExc_TypeError,
                   std::string(what) + " must be a contiguous" + (writable ? ", writable" : "") +
                       " buffer (bytes, bytearray, memoryview, numpy array), not " +
                       std::string(py::str(object.get_type().attr("__name__"))));
    }
  }
  ~HeldBuffer() { PyBuffer_Release(&view_); }
  HeldBuffer(const HeldBuffer &) = delete;
  HeldBuffer &operator=(const HeldBuffer &) = delete;

  unsigned char *bytes() const { return static_cast<unsigned char *>(view_.buf); }
  size_t size() const { return size_t(view_.len); }

 private:
  Py_buffer view_{};
};

// The values of [offset, offset + count * size) of `length` bytes.
size_t valueCount(const ArrayFormat &format, size_t length, Py_ssize_t offset,
                  std::optional<Py_ssize_t> count) {
  std::string name(format.name);
  if (offset < 0 || size_t(offset) > length)
    raiseBuiltin(PyExc_ValueError, "offset " + std::to_string(offset) + " lies outside the " +
                                       std::to_string(length) + " bytes given");
  size_t available = length - size_t(offset);
  if (count) {
    if (*count < 0) raiseBuiltin(PyExc_ValueError, "count cannot be negative");
    if (size_t(*count) > available / format.size)
      raiseBuiltin(PyExc_ValueError, std::to_string(*count) + " " + name + " values need " +
                                         std::to_string(size_t(*count) * format.size) +
                                         " bytes; " + std::to_string(available) +
                                         " are there after the offset");
    return size_t(*count);
  }
  if (available % format.size != 0)
    raiseBuiltin(PyExc_ValueError,
                 std::to_string(available) + " bytes are not a whole number of " + name +
                     " values (" + std::to_string(format.size) + " bytes each): " +
                     std::to_string(available % format.size) +
                     " left over; give count to convert fewer");
  return available / format.size;
}

// `out` checked to take `count` values of the format's host type.
py::array checkedOut(const ArrayFormat &format, const py::object &out, size_t count) {
  if (!py::isinstance<py::array>(out))
    raiseBuiltin(PyExc_TypeError, "out must be a numpy array");
  py::array array = py::reinterpret_borrow<py::array>(out);
  py::dtype wanted = hostDtype(format);
  if (!array.dtype().equal(wanted))
    raiseBuiltin(PyExc_TypeError, "out has the dtype " + std::string(py::str(array.dtype())) +
                                      "; " + std::string(format.name) + " gives " +
                                      std::string(py::str(wanted)));
  if (!(array.flags() & py::array::c_style) || !array.writeable())
    raiseBuiltin(PyExc_ValueError, "out must be C-contiguous and writable");
  if (size_t(array.size()) != count)
    raiseBuiltin(PyExc_ValueError, "out holds " + std::to_string(array.size()) + " values; " +
                                       std::to_string(count) + " are decoded");
  return array;
}

py::array decode(const py::object &data, const std::string &name, Py_ssize_t offset,
                 std::optional<Py_ssize_t> count, const std::optional<py::object> &out) {
  const ArrayFormat &format = formatNamed(name);
  HeldBuffer in(data, false, "data");
  size_t n = valueCount(format, in.size(), offset, count);
  py::array result = out ? checkedOut(format, *out, n)
                         : py::array(hostDtype(format), std::vector<py::ssize_t>{py::ssize_t(n)});
  void *to = result.mutable_data();
  const unsigned char *from = in.bytes() + offset;
  {
    py::gil_scoped_release unlocked;
    format.decode(from, to, n);
  }
  return result;
}

py::object encode(const py::object &values, const std::string &name,
                  const std::optional<py::object> &out) {
  const ArrayFormat &format = formatNamed(name);
  if (format.encode == nullptr)
    raiseBuiltin(PyExc_ValueError, "the library only decodes " + name);
  // The values as a contiguous array of the host type (converted if need be).
  py::array array = py::module_::import("numpy").attr("ascontiguousarray")(values, hostDtype(format));
  size_t n = size_t(array.size());
  py::object result =
      out ? *out : py::object(py::array(py::dtype("uint8"), std::vector<py::ssize_t>{py::ssize_t(n * format.size)}));
  HeldBuffer to(result, true, "out");
  if (to.size() != n * format.size)
    raiseBuiltin(PyExc_ValueError, "out holds " + std::to_string(to.size()) + " bytes; " +
                                       std::to_string(n) + " " + name + " values take " +
                                       std::to_string(n * format.size));
  const void *from = array.data();
  {
    py::gil_scoped_release unlocked;
    format.encode(from, to.bytes(), n);
  }
  return result;
}

}  // namespace

void addNumbers(py::module_ &module) {
  module.def("decode", &decode, py::arg("data"), py::arg("format"), py::kw_only(),
             py::arg("offset") = 0, py::arg("count") = py::none(), py::arg("out") = py::none(),
             decodeDoc());
  module.def("encode", &encode, py::arg("values"), py::arg("format"), py::kw_only(),
             py::arg("out") = py::none(), encodeDoc());
  module.def("format_info", &formatInfo, py::arg("format"),
             "{'size': bytes per value, 'dtype': numpy dtype of the values, 'encode': whether "
             "encode() takes the format} for a format name.");
  module.attr("FORMATS") = formatNames();
}

}  // namespace fskit::python
