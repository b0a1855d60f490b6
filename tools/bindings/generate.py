#!/usr/bin/env python3
"""Writes the declarations of all requests, in every language, from bindings/requests.toml.

usage: generate.py [--check]

With --check it writes nothing, and ends with 1 where a file is not what it would write.
"""
import re
import subprocess
import sys
import tomllib
from pathlib import Path

import python

ROOT = Path(__file__).resolve().parents[2]
WIDTH = 120
NOTE = "made from bindings/requests.toml by tools/bindings/generate.py"

CPP = {"switch": "bool", "text": "const std::string&", "text?": "std::optional<std::string>", "bytes": "const ZELData&",
       "bytes?": "std::optional<ZELData>"}
CPP |= {f"u{bits}": f"std::uint{bits}_t" for bits in (8, 16, 32, 64)} | {f"s{bits}": f"std::int{bits}_t" for bits in (8, 16, 32, 64)}


def wrapped(text, prefix):
    """A comment of lines that are no longer than the project's."""
    lines, line = [], prefix
    for word in text.split():
        if len(line) + 1 + len(word) > WIDTH and line != prefix:
            lines.append(line)
            line = prefix
        line += f" {word}"
    return [*lines, line]


def cpp_value(kind):
    return CPP.get(kind, kind).removeprefix("const ").removesuffix("&")


def cpp_parameter(argument):
    kind = argument["type"]
    by_reference = kind not in CPP or kind.endswith("?")
    return f"const {CPP.get(kind, kind)}&" if by_reference else CPP[kind]


def told(entry):
    return f"{entry['name']}: {entry['does']}"


# -- C++

def cpp_structures(table):
    out = ["#pragma once", "", "#include <cstdint>", "#include <optional>", "#include <string>", "",
           "#include <ZELTarkaSDK/platform/export.h>", "", f"// What requests give; {NOTE}.", "", "namespace zel {", ""]
    for name, structure in table["structure"].items():
        out += [f"// {structure['does']}", f"struct ZEL_EXPORT {name} {{"]
        members = [(cpp_value(one["type"]), one) for one in structure["members"]]
        for kind, one in members:
            initial = " = {}" if kind.startswith("std::optional") else " = 0"
            comment = f"  // {one['does']}" if "does" in one else ""
            out.append(f"  {kind} {one['name']}{initial};{comment}")
        out += ["", f"  bool operator==(const {name}&) const = default;", "};", ""]
    return "\n".join([*out, "}  // namespace zel", ""])


def cpp_declaration(request, owner=""):
    gives = cpp_value(request["gives"]) if "gives" in request else "void"
    parameters = [f"{cpp_parameter(one)} {one['name']}" for one in request.get("arguments", [])]
    options = "const RequestOptions& options" + ("" if owner else " = {}")
    head = f"Pending<{gives}> {owner}{request['name']}("
    return head + ", ".join([*parameters, options]) + ")"


def cpp_header(table):
    out = ["#pragma once", "", "#include <cstdint>", "#include <optional>", "#include <string>", "",
           "#include <ZELTarkaSDK/CameraValues.h>", "#include <ZELTarkaSDK/Pending.h>",
           "#include <ZELTarkaSDK/ZELCameraRecords.h>", "#include <ZELTarkaSDK/ZELData.h>",
           "#include <ZELTarkaSDK/platform/export.h>", "", "namespace zel {", "",
           f"// Every request that a camera answers, as a call each; {NOTE}.", "//",
           "// Requests of one kind wait for each other; those of different kinds do not. Numbers whose meaning only the camera",
           "// knows are passed through.", "//",
           "// Thread: any thread.", "//",
           "// Errors: `lost` without a link, `refused` by the camera, `timeLimit`, `cancelled`, and `closed` once the camera object",
           "//         is destroyed.", "class ZEL_EXPORT CameraRequests {", " public:"]
    for request in table["request"]:
        text = " ".join([request["does"], *(f"{told(one)}." for one in request.get("arguments", []) if "does" in one)])
        out += wrapped(text, "  //")
        out += [f"  {cpp_declaration(request)};", ""]
    out += [" protected:", "  CameraRequests() = default;", "  ~CameraRequests() = default;",
            "  CameraRequests(const CameraRequests&) = default;", "  CameraRequests& operator=(const CameraRequests&) = default;",
            "  CameraRequests(CameraRequests&&) noexcept = default;",
            "  CameraRequests& operator=(CameraRequests&&) noexcept = default;",
            "  std::shared_ptr<CameraCore> core_;", "};", "", "}  // namespace zel", ""]
    text = "\n".join(out)
    return text.replace("namespace zel {\n", "namespace zel {\n\nclass CameraCore;\n", 1).replace(
        "#include <optional>", "#include <memory>\n#include <optional>", 1)


def cpp_source(table):
    out = [f"// {NOTE[0].upper()}{NOTE[1:]}.", "", "#include <ZELTarkaSDK/CameraRequests.h>",
           "#include <ZELTarkaSDK/ZELCameraManager.h>", "#include <ZELTarkaSDK/ZELCameraUCD.h>", "",
           '#include "facade/ask.h"', "", "namespace zel {", ""]
    for request in table["request"]:
        out.append(f"{cpp_declaration(request, 'CameraRequests::')} {{")
        owner, _, call = request["calls"].rpartition(".")
        function = f"&ZELCamera{'Manager' if owner else 'UCD'}::{call}"
        given = "".join(f", {one['name']}" for one in request.get("arguments", []))
        gives = cpp_value(request["gives"]) if "gives" in request else "void"
        how = "ask" if request.get("answered", True) else "tell"
        kind = f"<{gives}>" if how == "ask" else ""
        out += [f"  return {how}{kind}(core_, {{\"{request['name']}\", \"{request['row']}\"}}, options, {function}{given});", "}", ""]
    return "\n".join([*out, "}  // namespace zel", ""])


# -- C

C = {"switch": "int"} | {f"u{bits}": f"uint{bits}_t" for bits in (8, 16, 32, 64)} | {f"s{bits}": f"int{bits}_t" for bits in (8, 16, 32, 64)}
C_RECORDS = {"ZELGpsData": "zel_gps_data", "ZELGyroData": "zel_gyro_data", "ZELOrientationData": "zel_orientation_data",
             "ZELIPAEMMWeight": "zel_metering_weights", "ZELIPMEParam": "zel_manual_exposure", "timelapse_info": "zel_timelapse_info",
             "ZELOriginOffset": "zel_origin_offset_data", "calib_wb_gain": "zel_white_balance_gain_data",
             "calib_vignette_luma": "zel_vignette_luma_data", "calib_vignette_gain": "zel_vignette_gain_data",
             "ZELVideoMnd": "zel_video_info"}
C_OPEN, C_CLOSE = ["#ifdef __cplusplus", 'extern "C" {', "#endif", ""], ["#ifdef __cplusplus", "}", "#endif", ""]
C_FREED = "Free what it gives with zel_free()."


def snake(name):
    """As cmake/lint/structure.py has it."""
    name = re.sub(r"([A-Z]+)([A-Z][a-z])", r"\1_\2", name)
    return re.sub(r"([a-z0-9])([A-Z])", r"\1_\2", name).lower()


def c_struct(kind):
    """What C calls a structure or a record."""
    return C_RECORDS.get(kind, f"zel_{snake(kind)}_result")


def c_argument(argument):
    """Its parameters, and how the C++ call is given them."""
    kind, name = argument["type"], snake(argument["name"])
    if kind in C:
        return [f"{C[kind]} {name}"], name
    if kind == "text":
        return [f"const char* {name}"], f'textIn({name}, "{name}")'
    if kind in ("bytes", "bytes?"):
        taken = "bytesIn" if kind == "bytes" else "someBytesIn"
        return [f"const uint8_t* {name}", f"size_t {name}_length"], f'{taken}({name}, {name}_length, "{name}")'
    return [f"const {c_struct(kind)}* {name}"], f'recordIn({name}, "{name}")'


def c_given(request):
    """The parameters for the result, and what takes it."""
    if "gives" not in request:
        return [], "Nothing()"
    kind = request["gives"]
    if kind in C:
        return [f"{C[kind]}* out"], "NumberOut(out)"
    if kind == "text?":
        return ["char** out"], "TextOut(out)"
    if kind == "bytes?":
        return ["uint8_t** out", "size_t* length"], "BytesOut(out, length)"
    return [f"{c_struct(kind)}* out"], "RecordOut(out, kNative)"


def c_declaration(request):
    arguments = [parameter for one in request.get("arguments", []) for parameter in c_argument(one)[0]]
    return f"zel_status zel_{snake(request['name'])}(" + ", ".join(
        ["zel_camera* camera", *arguments, "int time_limit", *c_given(request)[0], "zel_error* error"]) + ")"


def c_begin_declaration(request):
    arguments = [parameter for one in request.get("arguments", []) for parameter in c_argument(one)[0]]
    return f"zel_status zel_begin_{snake(request['name'])}(" + ", ".join(
        ["zel_camera* camera", *arguments, "int time_limit", *c_given(request)[0], "zel_done_callback callback", "void* user",
         "zel_call** call", "zel_error* error"]) + ")"


def c_owned(request, table):
    kind = request.get("gives", "")
    members = table["structure"].get(kind, {}).get("members", [])
    return kind in ("text?", "bytes?") or any(one["type"] == "text?" for one in members)


def c_header(table):
    out = ["#pragma once", "", "#include <stddef.h>", "#include <stdint.h>", "", "#include <ZELTarkaSDK/platform/export.h>",
           "#include <ZELTarkaSDK/zel_records.h>", "#include <ZELTarkaSDK/zel_status.h>", "",
           *wrapped(f"Every request that a camera answers, as a call each; {NOTE}. Programs include zel.h.", "//"), "//",
           "// Requests of one kind wait for each other; those of different kinds do not. Numbers whose meaning only the camera",
           "// knows are passed through. A text or bytes that are absent are NULL.", "//",
           "// Units: milliseconds of the time limit; 0 is the camera's own.", "//", "// Thread: any thread; see zel.h.", "//",
           "// Errors: ZEL_LOST without a link, ZEL_REFUSED by the camera, ZEL_TIME_LIMIT, and ZEL_CLOSED once the camera is",
           "//         closed.", "", *C_OPEN]
    for name, structure in table["structure"].items():
        out += [f"// {structure['does']}", f"typedef struct {c_struct(name)} {{", "  size_t size;"]
        for one in structure["members"]:
            comment = f"  // {one['does']}" if "does" in one else ""
            is_text = one["type"] == "text?"
            comment = "  // NULL where it is not ASCII; free it with zel_free()" if is_text else comment
            out.append(f"  {'char*' if is_text else C[one['type']]} {snake(one['name'])};{comment}")
        out += [f"}} {c_struct(name)};", ""]
    for request in table["request"]:
        text = [request["does"], *(f"{snake(one['name'])}: {one['does']}." for one in request.get("arguments", []) if "does" in one)]
        text += [C_FREED] if c_owned(request, table) else []
        out += wrapped(" ".join(text), "//")
        out += [f"ZEL_EXPORT {c_declaration(request)};", ""]
    return "\n".join([*out, *C_CLOSE])


def c_results(table):
    out = ["#pragma once", "", "#include <ZELTarkaSDK/CameraValues.h>", "#include <ZELTarkaSDK/zel_requests.h>", "",
           '#include "bindings/c/records.h"', '#include "bindings/c/text.h"', "",
           f"// The structures that requests give, as C has them; {NOTE}.", "", "namespace zel::c {", ""]
    for name, structure in table["structure"].items():
        members = []
        for one in structure["members"]:
            value = f"from.{one['name']}"
            members.append(f".{snake(one['name'])} = " + (f"textOut({value})" if one["type"] == "text?" else value))
        out += [f"inline {c_struct(name)} native(const {name}& from) {{", f"  return {{.size = 0, {', '.join(members)}}};", "}", ""]
    out += ["// All of these, and those of the records.",
            "inline constexpr auto kNative = [](const auto& from) { return native(from); };", ""]
    return "\n".join([*out, "}  // namespace zel::c", ""])


def c_source(table):
    out = [f"// {NOTE[0].upper()}{NOTE[1:]}.", "", "#include <ZELTarkaSDK/CameraRequests.h>", "#include <ZELTarkaSDK/zel.h>", "",
           '#include "bindings/c/ask.h"', '#include "bindings/c/results.h"', "", "using namespace zel::c;", ""]
    for request in table["request"]:
        given = "".join(f"{c_argument(one)[1]}, " for one in request.get("arguments", []))
        out += [f"{c_declaration(request)} {{",
                f"  return ask(camera, time_limit, error, {c_given(request)[1]}, [&](zel::Camera& asked, const zel::RequestOptions& options) {{",
                f"    return asked.{request['name']}({given}options);", "  });", "}", ""]
    return "\n".join(out[:-1] + [""])


def c_begin_header(table):
    out = ["#pragma once", "", "#include <stddef.h>", "#include <stdint.h>", "", "#include <ZELTarkaSDK/platform/export.h>",
           "#include <ZELTarkaSDK/zel_begin.h>", "#include <ZELTarkaSDK/zel_records.h>", "#include <ZELTarkaSDK/zel_requests.h>",
           "#include <ZELTarkaSDK/zel_status.h>", "",
           *wrapped(f"The requests of zel_requests.h as calls that are begun, see zel_begin.h; {NOTE}. Programs include zel.h.", "//"),
           "", *C_OPEN]
    out += [f"ZEL_EXPORT {c_begin_declaration(request)};" for request in table["request"]]
    return "\n".join([*out, "", *C_CLOSE])


def c_begin_source(table):
    out = [f"// {NOTE[0].upper()}{NOTE[1:]}.", "", "#include <ZELTarkaSDK/CameraRequests.h>", "#include <ZELTarkaSDK/zel.h>", "",
           '#include "bindings/c/ask.h"', '#include "bindings/c/call_object.h"', '#include "bindings/c/results.h"', "",
           "using namespace zel::c;", ""]
    for request in table["request"]:
        given = "".join(f"{c_argument(one)[1]}, " for one in request.get("arguments", []))
        out += [f"{c_begin_declaration(request)} {{",
                f"  return beginAsking(camera, time_limit, {{callback, user, call}}, error, {c_given(request)[1]}, "
                "[&](zel::Camera& asked, const zel::RequestOptions& options) {",
                f"    return asked.{request['name']}({given}options);", "  });", "}", ""]
    return "\n".join(out[:-1] + [""])


def formatted(name, text):
    """As clang-format would have it, so that the lint finds nothing in it."""
    if name.endswith(".py"):
        return text
    done = subprocess.run(["clang-format", f"--assume-filename={ROOT / name}"], input=text, capture_output=True, text=True,
                          check=True, cwd=ROOT)
    return done.stdout


FILES = {"include/ZELTarkaSDK/CameraValues.h": cpp_structures, "include/ZELTarkaSDK/CameraRequests.h": cpp_header,
         "facade/camera_requests.cc": cpp_source, "include/ZELTarkaSDK/zel_requests.h": c_header,
         "bindings/c/zel_requests.cc": c_source, "bindings/c/results.h": c_results,
         "include/ZELTarkaSDK/zel_begin_requests.h": c_begin_header, "bindings/c/zel_begin_requests.cc": c_begin_source,
         **python.files(c_struct)}


def check_rows(table):
    """Every row of the catalogue is a request, or is said not to be one."""
    rows = set(re.findall(r'^    \{"(registerMsg\w+)"', (ROOT / "protocol/catalogue.h").read_text(), re.MULTILINE))
    known = {one["row"] for one in table["request"]} | set(table["without"])
    for row in sorted(rows ^ known):
        raise SystemExit(f"generate.py: {row} is in the {'catalogue' if row in rows else 'table'} alone")


def main():
    table = tomllib.loads((ROOT / "bindings/requests.toml").read_text())
    check_rows(table)
    stale = []
    for name, make in FILES.items():
        text = formatted(name, make(table))
        path = ROOT / name
        if path.exists() and path.read_text() == text:
            continue
        stale.append(name)
        if "--check" not in sys.argv[1:]:
            path.write_text(text)
    for name in stale:
        print(f"generate.py: {name} {'is not what the table says' if '--check' in sys.argv[1:] else 'is written'}")
    return 1 if stale and "--check" in sys.argv[1:] else 0


if __name__ == "__main__":
    sys.exit(main())
