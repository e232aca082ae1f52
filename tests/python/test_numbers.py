# SPDX-License-Identifier: MIT
"""decode() and encode() against the C one-value converters (ctypes), buffers of every kind,
bad input and threads; the formats' edge values are the C tests' (tests/numformat)."""

import ctypes

import numpy as np
import pytest

import fskit
from conftest import run_threads

# format: the C converters' names after "decode" and "encode"
C_NAMES = {"vaxf": "VaxFloat", "vaxd": "VaxDouble", "hpshort": "HpShort", "hplong": "HpLong",
           "hpdouble": "HpDouble", "novaf": "NovaFloat", "novad": "NovaDouble",
           "incos": "IncosMagMass", "quorinty": "QuorInty", "novaushort": "NovaUshort",
           "novaulong": "NovaUlong", "ieeef": "IeeeFloat", "ieeed": "IeeeDouble"}


def c_decode(clib, fmt: str, data: bytes) -> np.ndarray:
    """One C call per value, as a program using the library would."""
    info = fskit.format_info(fmt)
    size, dtype = info["size"], np.dtype(info["dtype"])
    result, raw = ctypes.create_string_buffer(16), bytearray()
    for at in range(0, len(data), size):
        source = ctypes.create_string_buffer(data[at:at + size], 8)
        if fmt == "quorrec":
            mass, intensity, flags = ctypes.c_double(), ctypes.c_float(), ctypes.c_uint8()
            clib.decodeQuorMassInty(source, ctypes.byref(mass), ctypes.byref(intensity),
                                    ctypes.byref(flags))
            raw += np.array([(mass.value, intensity.value, flags.value)], dtype=dtype).tobytes()
        else:
            getattr(clib, "decode" + C_NAMES[fmt])(source, result)
            raw += result.raw[:dtype.itemsize]
    return np.frombuffer(bytes(raw), dtype=dtype)


def c_encode(clib, fmt: str, values: np.ndarray) -> bytes:
    size = fskit.format_info(fmt)["size"]
    result, out = ctypes.create_string_buffer(16), bytearray()
    for value in values:
        if fmt == "quorrec":
            clib.encodeQuorMassInty(ctypes.byref(ctypes.c_double(value["mass"])),
                                    ctypes.byref(ctypes.c_float(value["intensity"])),
                                    ctypes.byref(ctypes.c_uint8(value["flags"])), result)
        else:
            source = ctypes.create_string_buffer(value.tobytes(), 8)
            getattr(clib, "encode" + C_NAMES[fmt])(source, result)
        out += result.raw[:size]
    return bytes(out)


def same_bits(a: np.ndarray, b: np.ndarray) -> bool:
    return a.dtype == b.dtype and a.tobytes() == b.tobytes()


@pytest.mark.parametrize("fmt", sorted(C_NAMES) + ["quorrec"])
def test_random_patterns_decode_as_the_c_converter(clib, fmt):
    size = fskit.format_info(fmt)["size"]
    count = 40000 if fmt in ("vaxf", "novaf") else 4000
    data = np.random.default_rng(len(fmt)).integers(0, 256, size * count, dtype=np.uint8).tobytes()
    assert same_bits(fskit.decode(data, fmt), c_decode(clib, fmt, data))


def random_values(dtype, count: int, seed: int) -> np.ndarray:
    rng = np.random.default_rng(seed)
    if dtype.kind == "u":
        return rng.integers(0, np.iinfo(dtype).max, count, dtype=dtype, endpoint=True)
    if dtype.names:
        values = np.zeros(count, dtype=dtype)
        values["mass"] = random_values(np.dtype(np.float64), count, seed + 1)[:count]
        values["intensity"] = random_values(np.dtype(np.float32), count, seed + 2)[:count]
        values["flags"] = rng.integers(0, 256, count)
        return values
    # Any bit pattern: NaNs, infinities, denormals, both zeros among them.
    bits = rng.integers(0, 256, count * dtype.itemsize, dtype=np.uint8)
    specials = np.array([0, -0.0, np.inf, -np.inf, np.nan, 2.0 ** 127, 2.0 ** -128, 2.0 ** -130,
                         0.5, 0.49, 2.0 ** 31, 1e-45, 3.4e38], dtype=dtype)
    return np.concatenate([specials, bits.view(dtype)])


@pytest.mark.parametrize("fmt", [f for f in fskit.FORMATS if fskit.format_info(f)["encode"]])
def test_encode_as_the_c_converter_and_round_trips(clib, fmt):
    dtype = fskit.format_info(fmt)["dtype"]
    values = random_values(dtype, 4000, seed=len(fmt))
    encoded = fskit.encode(values, fmt)
    assert encoded.dtype == np.uint8 and bytes(encoded) == c_encode(clib, fmt, values)
    if fmt in ("hpshort", "hplong", "hpdouble", "ieeef", "ieeed"):
        assert same_bits(fskit.decode(encoded, fmt), values)


def test_buffers_of_every_kind_and_offsets(tmp_path):
    values = np.linspace(-1000, 1000, 1001, dtype=np.float32)
    raw = bytes(fskit.encode(values, "vaxf"))
    path = tmp_path / "values.dat"
    path.write_bytes(b"HEADER!!" + raw)
    mapped = np.memmap(path, dtype=np.uint8, mode="r")
    for data in (raw, bytearray(raw), memoryview(raw), np.frombuffer(raw, dtype=np.uint8),
                 np.frombuffer(raw, dtype="<u4")):
        assert same_bits(fskit.decode(data, "vaxf"), values)
    assert same_bits(fskit.decode(mapped, "vaxf", offset=8), values)
    assert same_bits(fskit.decode(mapped, "vaxf", offset=12, count=10), values[1:11])
    out = np.empty(10, dtype=np.float32)
    assert fskit.decode(raw, "vaxf", count=10, out=out) is out and same_bits(out, values[:10])
    target = bytearray(len(raw))
    assert fskit.encode(values, "vaxf", out=target) is target and bytes(target) == raw
    assert fskit.encode(values.astype(np.float64), "vaxf").tobytes() == raw  # converted first
    assert fskit.decode(b"", "vaxd").shape == (0,)


@pytest.mark.parametrize("call, error, words", [
    (lambda: fskit.decode(b"\0" * 7, "novad"), ValueError, "not a whole number .* 7 left over"),
    (lambda: fskit.decode(b"\0" * 8, "vaxf", count=3), ValueError, "12 bytes"),
    (lambda: fskit.decode(b"\0" * 8, "vaxf", offset=9), ValueError, "outside"),
    (lambda: fskit.decode(b"\0" * 8, "vaxf", offset=-1), ValueError, "outside"),
    (lambda: fskit.decode(b"\0" * 8, "vaxf", count=-1), ValueError, "negative"),
    (lambda: fskit.decode(b"\0" * 8, "vaxg"), ValueError, r"unknown format 'vaxg' \(vaxf, vaxd"),
    (lambda: fskit.decode("text", "vaxf"), TypeError, "buffer"),
    (lambda: fskit.decode(np.zeros(4)[::2], "vaxf"), TypeError, "contiguous"),
    (lambda: fskit.decode(b"\0" * 8, "vaxf", out=np.empty(2)), TypeError, "float32"),
    (lambda: fskit.decode(b"\0" * 8, "vaxf", out=np.empty(3, np.float32)), ValueError, "holds 3"),
    (lambda: fskit.encode([1.0], "novaf"), ValueError, "only decodes novaf"),
    (lambda: fskit.encode([1.0, 2.0], "vaxf", out=bytearray(7)), ValueError, "take 8"),
    (lambda: fskit.encode([1.0], "vaxf", out=b"1234"), TypeError, "writable"),
])
def test_bad_input_is_refused_clearly(call, error, words):
    with pytest.raises(error, match=words):
        call()


def test_threads_decode_at_once():
    data = np.random.default_rng(9).integers(0, 256, 4 * 200000, dtype=np.uint8)
    expected = {fmt: fskit.decode(data, fmt) for fmt in ("vaxf", "novaf", "hplong", "vaxd")}

    def work(fmt: str) -> None:
        for _ in range(20):
            assert same_bits(fskit.decode(data, fmt), expected[fmt]), fmt

    run_threads(work, list(expected) * 2)
