"""The binding for Python: values, requests and their conversions, out of the table of the requests and the headers for C."""
import re
import textwrap
from pathlib import Path

import headers

ROOT = Path(__file__).resolve().parents[2]
WIDTH = 100
NOTE = "made from bindings/requests.toml and the headers for C by tools/bindings/generate.py"

# What Python calls the structs: of records as they are given and come, and of what can be asked for at any time.
RECORDS = {"zel_gps_data": "Position", "zel_gyro_data": "Motion", "zel_orientation_data": "Orientation",
           "zel_manual_exposure": "ManualExposure", "zel_metering_weights": "MeteringWeights",
           "zel_white_balance_gain_data": "WhiteBalanceGain", "zel_vignette_luma_data": "VignetteLuma",
           "zel_vignette_gain_data": "VignetteGain", "zel_timelapse_info": "Timelapse", "zel_lens_data": "Lens",
           "zel_lens_offset_data": "LensOffset", "zel_origin_offset_data": "OriginOffset", "zel_video_info": "VideoInfo"}
REPORTS = {"zel_link_statistics": "LinkStatistics", "zel_stream_statistics": "StreamStatistics", "zel_output_report": "OutputReport"}
ENUMERATIONS = {"zel_status": "Status", "zel_link_state": "LinkState", "zel_event_type": "EventType", "zel_frame_type": "FrameType",
                "zel_output_state": "OutputState", "zel_track": "Track"}
# What the names of an enumeration begin with in C, and its value that is a count.
PREFIXES = {"zel_link_state": "LINK_", "zel_frame_type": "FRAME_", "zel_output_state": "OUTPUT_"}
COUNTS = {"FRAME_TYPES"}
# Records that a program gives.
GIVEN = [name for name in RECORDS if name not in ("zel_lens_data", "zel_lens_offset_data", "zel_video_info")]
# Zero stands for what is not known where all three are given.
UNKNOWN = {"position", "motion", "orientation"}


def snake(name):
    name = re.sub(r"([A-Z]+)([A-Z][a-z])", r"\1_\2", name)
    return re.sub(r"([a-z0-9])([A-Z])", r"\1_\2", name).lower()


def structs(table, c_struct):
    """All structs that become classes, by their names in C: the class's name."""
    results = {c_struct(name): name for name in table["structure"]}
    return {**results, **RECORDS, **REPORTS}


def parts(paragraphs):
    """A comment's plain paragraphs and its units; how it is owned concerns programs in C alone."""
    paragraphs = [said(part) for part in paragraphs]
    units = [part for part in paragraphs if part.startswith("Units:")]
    plain = [part for part in paragraphs if not re.match(r"(Units|Owner|Thread|Errors):", part)]
    return plain + units


def said(text):
    """A comment in Python's words."""
    for name, python in {**RECORDS, **REPORTS, **ENUMERATIONS}.items():
        text = text.replace(name, python)
    text = re.sub(r"\bZEL_(?:LINK_|FRAME_|OUTPUT_)?([A-Z_]+)\b", r"\1", text)
    return text.replace("NULL where it is not ASCII; free it with zel_free()", "None where it is not ASCII").replace("NULL", "None")


# -- Values

def member_type(member, classes):
    if member.kind in ENUMERATIONS:
        return ENUMERATIONS[member.kind]
    if member.kind in ("char*", "char") or (member.kind == "uint8_t" and member.count):
        return "bytes" if member.kind == "uint8_t" else "str" if member.kind == "char" else "str | None"
    kind = classes.get(member.kind, "float" if member.kind in ("double", "float") else "int")
    return f"tuple[{kind}, ...]" if member.count else kind


def member_note(member, kind):
    words = []
    if member.count and member.kind != "char":
        words.append(f"{member.count} {'bytes' if kind == 'bytes' else 'of them'}")
    elif kind == "int" and member.kind != "int" and "int64" not in member.kind:
        words.append(value_range(member.kind))
    does = said(member.does)
    return "; ".join([does, *words] if does else words)


def value_range(kind):
    bits = int(re.search(r"\d+", kind)[0])
    return f"{-2 ** (bits - 1)} to {2 ** (bits - 1) - 1}" if not kind.startswith("u") else f"0 to {2 ** bits - 1}"


def docstring(paragraphs, indent):
    lines = []
    for part in paragraphs:
        block = part if isinstance(part, list) else textwrap.wrap(part, WIDTH - len(indent) - 3)
        lines += [*block, ""]
    text = "\n".join(f"{indent}{line}".rstrip() for line in lines[:-1])
    body = text.lstrip()
    return f'{indent}"""{body}"""' if "\n" not in body else f'{indent}"""{body}\n{indent}"""'


def listed(entries):
    """Lines of a docstring's list."""
    lines = []
    for name, does in entries:
        lines += textwrap.wrap(f"{name}: {does}", WIDTH - 8, initial_indent="    ", subsequent_indent="        ")
    return lines


def default_of(kind):
    return {"int": "0", "float": "0.0"}.get(kind)


def class_lines(struct, name, classes):
    kinds = [(one, member_type(one, classes)) for one in struct.members]
    entries = [(one.name, member_note(one, kind)) for one, kind in kinds]
    entries = [(member, does) for member, does in entries if does]
    paragraphs = parts(struct.does) + ([["Attributes:", *listed(entries)]] if entries else [])
    lines = [f"class {name}(NamedTuple):", docstring(paragraphs, "    "), ""]
    has_defaults = struct.name in ("zel_gps_data", "zel_gyro_data", "zel_orientation_data")
    for one, kind in kinds:
        lines.append(f"    {one.name}: {kind}" + (f" = {default_of(kind)}" if has_defaults else ""))
    return [*lines, "", ""]


def enumeration_lines(enumeration, name):
    lines = [f"class {name}(IntEnum):", docstring(parts(enumeration.does) or [f"Numbers of the library: {name}."], "    "), ""]
    prefix = PREFIXES.get(enumeration.name, "")
    for value, number, does in enumeration.values:
        if value in COUNTS:
            continue
        lines.append(f"    {value.removeprefix(prefix)} = {number}" + (f"  # {said(does)}" if does else ""))
    return [*lines, "", ""]


def values(table, c_struct):
    found, classes = headers.read(ROOT / "include/ZELTarkaSDK"), structs(table, c_struct)
    lines = [f'"""Numbers, records and results of cameras.\n\n{NOTE[0].upper()}{NOTE[1:]}.\n"""', "from enum import IntEnum", "from typing import NamedTuple", "", ""]
    for name, python in ENUMERATIONS.items():
        lines += enumeration_lines(found[name], python)
    for name, python in classes.items():
        lines += class_lines(found[name], python, classes)
    return "\n".join(lines[:-2] + [""])


# -- Requests

PYTHON = {"switch": "bool", "text": "str", "text?": "str | None", "bytes": "Bytes", "bytes?": "bytes | None"}


def request_type(kind, c_struct, classes):
    if kind in PYTHON:
        return PYTHON[kind]
    return "int" if re.fullmatch(r"[us]\d+", kind) else classes[c_struct(kind)]


def argument_note(argument, c_struct, classes):
    words = [argument["does"]] if "does" in argument else []
    number = re.fullmatch(r"([us])(\d+)", argument["type"])
    if number:
        words.append(value_range(f"{'u' if number[1] == 'u' else ''}int{number[2]}_t"))
    if argument["type"].startswith("bytes"):
        words.append("bytes or anything that shows its own")
    if not number and argument["type"] not in PYTHON:
        words.append(f"a {classes[c_struct(argument['type'])]}, or a sequence of its members")
    return "; ".join(words)


def has_unknown(request):
    return UNKNOWN <= {one["name"] for one in request.get("arguments", [])}


def parameter(argument, request, c_struct, classes):
    name, kind = snake(argument["name"]), request_type(argument["type"], c_struct, classes)
    if argument["type"] == "bytes?":
        return f"{name}: Bytes | None = None"
    if has_unknown(request) and name in UNKNOWN:
        return f"{name}: {kind} = {kind}()"
    return f"{name}: {kind}"


def request_doc(request, c_struct, classes):
    arguments = [(snake(one["name"]), argument_note(one, c_struct, classes)) for one in request.get("arguments", [])]
    arguments = [(name, does) for name, does in arguments if does]
    arguments.append(("time_limit", "seconds; None: the camera's own"))
    does = request["does"].replace("see PreviewFormat.h", "four rates (15, 20, 25, 30) for each size, the smallest first")
    paragraphs = [does, ["Args:", *listed(arguments)]]
    gives = request_type(request["gives"], c_struct, classes) if "gives" in request else None
    if gives:
        number = re.fullmatch(r"([us])(\d+)", request["gives"])
        note = f", {value_range(('u' if number[1] == 'u' else '') + f'int{number[2]}_t')}" if number else ""
        note += "; None where the camera has none, or sends what cannot be read" if "None" in gives else ""
        paragraphs.append(["Returns:", f"    {gives.removesuffix(' | None')}{note}"])
    errors = "LostError, TimeLimitError, ClosedError" if not request.get("answered", True) else "LostError, RefusedError, TimeLimitError, ClosedError"
    errors += ", OldFirmwareError" if "irmware" in request["does"] else ""
    errors += "; ValueError, TypeError for the arguments" if len(arguments) > 1 else ""
    return docstring([*paragraphs, ["Raises:", *textwrap.wrap(errors, WIDTH - 12, initial_indent="    ", subsequent_indent="        ")]], "        ")


def method(request, is_async, c_struct, classes):
    name = snake(request["name"])
    gives = request_type(request["gives"], c_struct, classes) if "gives" in request else "None"
    parameters = ["self", *(parameter(one, request, c_struct, classes) for one in request.get("arguments", [])), "*", "time_limit: float | None = None"]
    head = f"    {'async ' if is_async else ''}def {name}({', '.join(parameters)}) -> {gives}:"
    if len(head) > WIDTH:
        head = f"    {'async ' if is_async else ''}def {name}(\n        {', '.join(parameters)}\n    ) -> {gives}:"
        if max(map(len, head.splitlines())) > WIDTH:
            lines = ",\n        ".join(parameters)
            head = f"    {'async ' if is_async else ''}def {name}(\n        {lines},\n    ) -> {gives}:"
    given = "".join(f", {snake(one['name'])}" for one in request.get("arguments", []))
    call = f'{"await " if is_async else ""}self._ask("{name}", time_limit{given})'
    if "gives" not in request:
        body = [f"        {call}"]
    elif gives in classes.values():
        body = [f"        return {gives}._make({call})"] if gives != "VideoInfo" else [f"        return video_info({call})"]
    else:
        body = [f"        result: {gives} = {call}", "        return result"]
    return [head, request_doc(request, c_struct, classes), *body, ""]


def requests(table, c_struct, is_async):
    classes = structs(table, c_struct)
    used = {classes[c_struct(kind)] for request in table["request"]
            for kind in [request.get("gives"), *(one["type"] for one in request.get("arguments", []))]
            if kind and kind not in PYTHON and not re.fullmatch(r"[us]\d+", kind)}
    imports = ",\n    ".join(sorted(used))
    name = "AsyncRequests" if is_async else "Requests"
    doc = [f"The requests that a camera answers, {'to be awaited' if is_async else 'each of which waits for its answer'}.",
           "Requests of one kind wait for each other; those of different kinds do not. Numbers whose meaning only the camera knows "
           "are passed through."]
    lines = [f'"""The requests of {"AsyncCamera" if is_async else "Camera"}.\n\n{NOTE[0].upper()}{NOTE[1:]}.\n"""', "from typing import Any", "",
             "from ._buffers import Bytes, video_info", f"from ._values import (\n    {imports},\n)", "", "", f"class {name}:",
             docstring(doc, "    "), "", "    __slots__ = ()", "",
             f"    {'async ' if is_async else ''}def _ask(self, begin: str, time_limit: float | None, *arguments: object) -> Any:",
             "        raise NotImplementedError", ""]
    for request in table["request"]:
        lines += method(request, is_async, c_struct, classes)
    return "\n".join(lines)


# -- The extension module, in C++

def to_python(member):
    value = f"from.{member.name}"
    if member.kind in ENUMERATIONS:
        return f"toPython(static_cast<int>({value}))"
    return f"toPython(static_cast<const char*>({value}))" if member.kind == "char" and member.count else f"toPython({value})"


def native_header(table, c_struct):
    names = list(structs(table, c_struct))
    out = ["#pragma once", "", "#include <ZELTarkaSDK/zel.h>", "", "#include <string>", "", '#include "bindings/python/native/python.h"', "",
           f"// Records and results as tuples, and records out of sequences; {NOTE}.", "", "namespace zel::python {", ""]
    out += [f"PyObject* toPython(const {name}& from);" for name in names]
    out += ["", "// False with an exception. name: for people."]
    out += [f"bool fromPython(PyObject* from, const std::string& name, {name}* to);" for name in GIVEN]
    return "\n".join([*out, "", "}  // namespace zel::python", ""])


def native_source(table, c_struct):
    found, classes = headers.read(ROOT / "include/ZELTarkaSDK"), structs(table, c_struct)
    out = [f"// {NOTE[0].upper()}{NOTE[1:]}.", "", '#include "bindings/python/native/records.h"', "",
           '#include "bindings/python/native/values.h"', "", "namespace zel::python {", ""]
    for name in classes:
        items = ", ".join(to_python(one) for one in found[name].members)
        out += [f"PyObject* toPython(const {name}& from) {{", f"  return tupleOf({items});", "}", ""]
    for name in GIVEN:
        members = found[name].members
        form = f"{RECORDS[name]}({', '.join(one.name for one in members)})"
        reads = " &&\n".join(f'    fromPython(PySequence_Fast_GET_ITEM(items.get(), {at}), name + ".{one.name}", &to->{one.name})'
                             for at, one in enumerate(members))
        out += [f"bool fromPython(PyObject* from, const std::string& name, {name}* to) {{", "  to->size = sizeof *to;",
                f'  const Reference items = itemsOf(from, name, "{form}", {len(members)});', f"  return items &&\n{reads};", "}", ""]
    return "\n".join([*out, "}  // namespace zel::python", ""])


def native_read(argument, c_struct):
    """How an argument is read, and how the library's call is given it."""
    name, kind = snake(argument["name"]), argument["type"]
    if kind == "text":
        return f'const char* const {name} = given.text("{name}");', name
    if kind in ("bytes", "bytes?"):
        how = "bytes" if kind == "bytes" else "bytesOrNone"
        return f'const auto {name} = given.{how}("{name}");', f"{name}.data, {name}.length"
    number = re.fullmatch(r"([us])(\d+)", kind)
    if number:
        return f'const auto {name} = given.number<std::{"u" if number[1] == "u" else ""}int{number[2]}_t>("{name}");', name
    return f'const auto {name} = given.record<{c_struct(kind)}>("{name}");', f"&{name}"


def native_out(request, c_struct):
    """The type of a result, and how the library's call is given where it goes."""
    kind = request.get("gives")
    if kind is None:
        return "Nothing", ""
    if kind == "text?":
        return "Text", "&out->text, "
    if kind == "bytes?":
        return "Bytes", "&out->data, &out->length, "
    number = re.fullmatch(r"([us])(\d+)", kind)
    return (f"std::{'u' if number[1] == 'u' else ''}int{number[2]}_t", "out, ") if number else (c_struct(kind), "out, ")


def native_requests(table, c_struct):
    out = [f"// {NOTE[0].upper()}{NOTE[1:]}.", "", '#include "bindings/python/native/methods.h"', "", '#include "bindings/python/native/arguments.h"', "",
           "// Each takes the camera, a wakeup or None, a time limit in milliseconds and the request's own arguments.", "",
           "namespace zel::python {", "namespace {", ""]
    rows = []
    for request in table["request"]:
        name, arguments = snake(request["name"]), request.get("arguments", [])
        read = [native_read(one, c_struct) for one in arguments]
        kind, place = native_out(request, c_struct)
        operation = "[[maybe_unused]] auto* out" if kind == "Nothing" else "auto* out"
        out += [f"PyObject* {name}(PyObject*, PyObject* const* arguments, Py_ssize_t count) {{", f"  Arguments given(arguments, count, {3 + len(read)});",
                '  const auto camera = given.handle(Kind::camera, "camera");', "  auto wakeup = given.wakeup();",
                '  const int timeLimit = given.number<int>("time_limit");', *(f"  {line}" for line, _ in read),
                f"  return given.begin<{kind}>(std::move(wakeup), [&](Operation& operation, {operation}, zel_error* error) {{",
                f"    return zel_begin_{name}(cameraOf(*camera), {''.join(f'{value}, ' for _, value in read)}timeLimit, {place}"
                "&Operation::onDone, &operation, operation.call(), error);", "  });", "}", ""]
        rows.append(f'    method<{name}>("{name}"),')
    out += ["PyMethodDef requestTable[] = {", *rows, "    {nullptr, nullptr, 0, nullptr},", "};", "", "}  // namespace", "",
            "PyMethodDef* requestMethods() { return requestTable; }", "", "}  // namespace zel::python", ""]
    return "\n".join(out)


def files(c_struct):
    """The files by their names, each with what makes it of the table."""
    package, native = "bindings/python/zeltarkasdk", "bindings/python/native"
    return {f"{package}/_values.py": lambda table: values(table, c_struct),
            f"{package}/_requests.py": lambda table: requests(table, c_struct, False),
            f"{package}/_async_requests.py": lambda table: requests(table, c_struct, True),
            f"{native}/records.h": lambda table: native_header(table, c_struct),
            f"{native}/records.cc": lambda table: native_source(table, c_struct),
            f"{native}/requests.cc": lambda table: native_requests(table, c_struct)}
