#!/usr/bin/env python3
"""Writes the call table of the bad-input sweep: one row per exported routine that has a C
prototype, calling it with arguments drawn from the sweep's current variant.

  sweep_calls.py OUTPUT COMPILER [FLAGS...]

The public headers are run through the compiler's preprocessor (so macro-made prototypes
count too) and every prototype of an exported name becomes a row. A parameter's C type
decides how its argument is made; a CHARACTER argument is a char pointer whose hidden
length parameter is named after it ("name" and "name_len")."""
import pathlib
import re
import subprocess
import sys

root = pathlib.Path(__file__).resolve().parents[3]


def exported():
    names = set()
    for path in (root / "tests" / "abi").glob("exports-*.txt"):
        for line in path.read_text().splitlines():
            line = line.strip()
            if line and not line.startswith("#"):
                names.add(line)
    return names


def prototypes(compiler, flags):
    text = subprocess.run([compiler, *flags, "-E", "-P", "-I", str(root / "include"), "-x", "c++",
                           str(root / "include" / "tarvo" / "tarvo.h")],
                          check=True, capture_output=True, text=True).stdout
    pattern = re.compile(r"([A-Za-z_][\w \*]*?)\s*\b(\w+)\s*\(((?:[^()]|\([^()]*\))*)\)\s*noexcept\s*;")
    return {m.group(2): m.group(3) for m in pattern.finditer(text)}


def split_params(params):
    params = " ".join(params.split())
    if params in ("", "void"):
        return []
    return [p.strip() for p in re.split(r",(?![^()]*\))", params)]


def argument(param, names):
    """The expression passed for one parameter, by its C type."""
    if "(*" in param:  # a procedure: one that does nothing
        returns = param.split("(*")[0].strip()
        return "[](auto...) {}" if returns == "void" else "[](auto...) { return 0; }"
    name = re.search(r"(\w+)$", param).group(1)
    ctype = param[: -len(name)].strip()
    if ctype == "tarvo_compare":
        return "[](const void*, const void*) { return 0; }"
    if ctype == "tarvo_len_t":
        text = name[: -len("_len")] if name.endswith("_len") else None
        return f"a.length({names.index(text)})" if text in names else "a.length(-1)"
    if ctype.endswith("*"):
        base = ctype[:-1].replace("const", "").strip()
        if base in ("char",):
            return f"a.text({names.index(name)})"
        return f"a.buffer<{base}>({names.index(name)})"
    return f"static_cast<{ctype}>(a.number())"


def row(name, params):
    parts = split_params(params)
    names = [re.search(r"(\w+)$", p).group(1) if "(*" not in p else "" for p in parts]
    args = ", ".join(argument(p, names) for p in parts)
    if names and names[0] == "jhandle" and "ierror" in names:
        check = f"Check::handle_refused, {names.index('ierror')}"
    else:
        check = "Check::no_crash, -1"
    # Structure, directory and procedure handles: JHANDLE, JSTAT, ... and IDIRID.
    handles = "true" if any(re.fullmatch(r"j\w+|idirid", n) for n in names) else "false"
    receiver = "Args& a" if args else "Args&"
    return f'{{"{name}", {check}, {handles}, []({receiver}) {{ {name}({args}); }}}},'


def main():
    output, compiler, flags = sys.argv[1], sys.argv[2], sys.argv[3:]
    found = prototypes(compiler, flags)
    rows = [row(name, found[name]) for name in sorted(exported() & found.keys())]
    missing = sorted(exported() - found.keys())
    text = ["// Written by sweep_calls.py from the public headers; do not edit."]
    text += rows
    text.append("#define TARVO_SWEEP_WITHOUT_PROTOTYPE " + " ".join(f'"{m}",' for m in missing))
    pathlib.Path(output).write_text("\n".join(text) + "\n")


main()
