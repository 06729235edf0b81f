#!/usr/bin/env python3
"""mend_proxies.py FOLDER HEADER...

What the generator of the C# proxies offers no rule for, in the proxies of one module:
an exception of the host's doesn't enter native code, operations that must be overridden are
abstract, callbacks pin themselves and are made of delegates, arguments have names, and the headers'
comments are the documentation.
"""
import pathlib
import re
import sys

from header_comments import HeaderComments, summary

DIRECTOR_METHOD = re.compile(
    r"^  private (\S+) (SwigDirectorMethod(\w+?)(?:__SWIG_\d+)?)\(([^\n]*)\) \{\n(.*?)^  \}\n", re.M | re.S)
MEMBER = re.compile(r"^(  )(?:public|protected) (?:static |virtual |override |abstract |new )*[\w.:<>\[\]]+ (\w+)(?= \{|\()", re.M)
CLASS = re.compile(r"^( *)public (?:abstract |static |sealed )*(?:class|struct|enum) (\w+)", re.M)
OPERATION = re.compile(r"^  public virtual (\S+) (\w+)\(([^\n]*)\) \{\n(.*?)^  \}\n", re.M | re.S)

# The arguments of the callbacks that surfaces and the peer manager raise.
ARGUMENTS = {
    "AudioStateCallback": ["state"],
    "IntCallback": ["rotation"],
    "MouseEvent": ["button", "x", "y"],
    "PeerListUpdateCallback": ["bluetoothOn", "peers"],
    "PointerEvent": ["type", "id", "x", "y", "isPrimary"],
    "ThreeIntCallback": ["delta", "x", "y"],
    "TwoIntCallback": ["x", "y"],
    "TwoIntDoubleIntCallback": ["width", "height", "scale", "inset"],
    "TwoUIntOneIntReturnBoolCallback": ["virtualKey", "scanCode", "repeatCount"],
    "TwoUIntReturnBoolCallback": ["virtualKey", "scanCode"],
    "TwoUintCallback": ["virtualKey", "scanCode"],
    "TwoUintsIntCallback": ["virtualKey", "scanCode", "repeatCount"],
}
ORDINALS = ["first", "second", "third", "fourth", "fifth"]


class Proxy:
    """The source of one class."""

    def __init__(self, path, comments):
        self.comments = comments
        self.path = path
        self.name = path.stem
        self.text = path.read_text(encoding="utf-8")

    def mend(self):
        if "SwigDirectorConnect()" in self.text:
            self.mend_director()
        if self.name == "InputContextComposite":
            self.text = re.sub(r"(  public override \S+ \w+\(.*\) \{\n)", r"\1    swigContexts.RequireMain(swigCPtr);" "\n", self.text)
        if self.name == "KVStoreMap":
            self.mend_store_map()
        if self.name in ("AudioDevicesState", "BluetoothPeerManager", "HidInputClient", "WindowsHwndInputContext"):
            self.replace("    swigHandle = cPtr;\n", "    swigHandle = cPtr;\n    global::Orbelantine.Swig.ProcessEnd.Watch(this);\n")
        if self.is_callback():
            self.mend_callback()
        elif self.name.startswith("Signal"):
            self.mend_signal()
        elif (self.path.parent / (self.name + "Impl.cs")).exists():
            self.mend_function()
        self.document()
        self.path.write_text(self.text, encoding="utf-8")

    def is_callback(self):
        return self.name.endswith("Impl") and "SwigDirectorMethodunpin" in self.text

    def replace(self, old, new, count=1):
        if self.text.count(old) != count:
            sys.exit(f"{self.path}: {self.text.count(old)} of {old!r}")
        self.text = self.text.replace(old, new)

    def document(self):
        owner = self.name

        def with_comment(match):
            comment = self.comments.of(owner, match[2])
            return (summary(comment, match[1]) if comment else "") + match[0]

        def of_class(match):
            comment = self.comments.of(match[2])
            return (summary(comment, match[1]) if comment else "") + match[0]

        self.text = MEMBER.sub(with_comment, self.text)
        self.text = CLASS.sub(of_class, self.text)

    def name_arguments(self, name):
        """Of the callbacks `name`: the generator knows them by their order."""
        _, parameters = self.call(name)
        for ordinal, argument in zip(ORDINALS, ARGUMENTS.get(name) or argument_names(parameters)):
            self.text = re.sub(rf"\b{ordinal}\b", argument, self.text)

    def add_members(self, members):
        end = self.text.rindex("}\n\n}")
        self.text = self.text[:end] + members + self.text[end:]

    def mend_director(self):
        self.text = DIRECTOR_METHOD.sub(guarded, self.text)
        called = {match[2] for match in DIRECTOR_METHOD.finditer(self.text)}
        abstract = set()

        def without_body(match):
            result, name, parameters, body = match.groups()
            has_base = "SwigExplicit" in body
            is_called = any(re.fullmatch(f"SwigDirectorMethod{name}(__SWIG_0)?", method) for method in called)
            # Of a pure operation with omitted arguments, the longest form is the one to override.
            if has_base or not is_called or self.is_shortened(name, parameters):
                return match[0]
            abstract.add(name)
            return f"  public abstract {result} {name}({parameters});\n"

        self.text = OPERATION.sub(without_body, self.text)
        if abstract:
            self.replace(f"public class {self.name} ", f"public abstract class {self.name} ")
        self.replace("  private void SwigDirectorConnect() {\n",
                     "  internal override bool swigIsCalled {\n"
                     "    get { return swigIsOverridden; }\n"
                     "  }\n\n"
                     "  private bool swigIsOverridden;\n\n"
                     "  private void SwigDirectorConnect() {\n"
                     f"    swigIsOverridden = GetType() != typeof({self.name});\n")

    def is_shortened(self, name, parameters):
        forms = [match[3] for match in OPERATION.finditer(self.text) if match[2] == name]
        return parameters.count(",") < max(form.count(",") for form in forms)

    def mend_callback(self):
        """pin and unpin are notes to the host: the pinning is done here."""
        self.replace("  public abstract void pin();\n", "  public virtual void pin() {\n  }\n")
        self.replace("  public abstract bool unpin();\n", "  public virtual bool unpin() {\n    return false;\n  }\n")
        self.text = re.sub(r'    if \(SwigDerivedClassHasMethod\("\w+", swigMethodTypes\d\)\)\n      ', "    ", self.text)
        self.text = re.sub(r"  private bool SwigDerivedClassHasMethod.*?^  \}\n\n", "", self.text, flags=re.M | re.S)
        self.text = re.sub(r"  private static global::System.Type\[\] swigMethodTypes.*\n", "", self.text)
        self.replace("    try {\n      pin();\n", "    swigLend();\n    try {\n      pin();\n")
        self.replace("    try {\n      return unpin();\n", "    swigGiveBack();\n    try {\n      return swigUnpinned(unpin());\n")
        self.add_members(
            "  private bool swigUnpinned(bool isGivenAway) {\n"
            "    if (isGivenAway) {\n"
            "      swigTake(ref swigHandle);\n"
            "      global::System.GC.SuppressFinalize(this);\n"
            "    }\n"
            "    return isGivenAway;\n"
            "  }\n")
        self.name_arguments(self.name[:-len("Impl")])

    def mend_store_map(self):
        """What a change ends of the inside of a store (binding/csharp/StoreTree.cs)."""
        for call, told in (("setitem(swigCPtr, key, KVStore.getCPtr(x));", "Replaced(this, key)"),
                           ("Remove(swigCPtr, key);", "Removed(this, key)"), ("Clear(swigCPtr);", "Cleared(this)")):
            self.replace(call + "\n", f"{call}\n    global::Orbelantine.Swig.StoreTree.{told};\n")

    def call(self, name):
        """The result of the call of the callbacks `name`, and its parameters."""
        source = (self.path.parent / (name + "Impl.cs")).read_text(encoding="utf-8")
        match = re.search(r"  public (?:abstract|virtual|override) (\S+) call\((.*)\)", source)
        types = [type_ for type_, _ in split(match[2])]
        return match[1], ", ".join(f"{type_} {ordinal}" for type_, ordinal in zip(types, ORDINALS))

    def mend_function(self):
        name = self.name
        result, parameters = self.call(name)
        call = f"action({names(parameters)})"
        delegate = delegate_type(result, parameters)
        self.replace(f"{name}Impl.getCPtr(impl)", f"{name}Impl.getCPtr(global::Orbelantine.Swig.NativeObject.swigGiven(impl))")
        self.add_members(
            "  /// <summary>A function that calls a delegate, for native code to hold as long as it likes. It may be\n"
            "  /// disposed once it is given. The delegate is called on the thread that raises what it waits for.</summary>\n"
            f"  public static {name} From({delegate} action) {{\n"
            f"    return new {name}(new DelegateImpl(action));\n"
            "  }\n\n"
            f"  private sealed class DelegateImpl : {name}Impl {{\n"
            f"    private readonly {delegate} action;\n\n"
            f"    public DelegateImpl({delegate} action) {{\n"
            "      if (action == null)\n"
            "        throw new global::System.ArgumentNullException(\"action\", \"A callback needs something to call.\");\n"
            "      this.action = action;\n"
            "    }\n\n"
            "    internal override object swigHostObject {\n"
            "      get { return action; }\n"
            "    }\n\n"
            f"    public override {result} call({parameters}) {{\n"
            f"      {'' if result == 'void' else 'return '}{call};\n"
            "    }\n"
            "  }\n")
        self.name_arguments(name)

    def mend_signal(self):
        name = self.name[len("Signal"):]
        result, parameters = self.call(name)
        delegate = delegate_type(result, parameters)
        self.text = re.sub(rf"{name}\.getCPtr\(slot\)",
                           f"{name}.getCPtr(global::Orbelantine.Swig.NativeObject.swigGiven(slot))", self.text)
        if result != "void":
            self.text = re.sub(r"(  public \S+ call\(.*\) \{\n)",
                               r"\1    if (empty())" "\n"
                               r'      throw new global::System.InvalidOperationException("No slot is connected that could answer.");' "\n",
                               self.text)
        self.add_members("".join(
            "  /// <summary>Calls a delegate at each event, on the thread that raises it, until the connection is\n"
            "  /// disconnected or the signal's owner ends.</summary>\n"
            f"  public connection connect({group}{delegate} slot) {{\n"
            f"    using ({name} function = {name}.From(slot))\n"
            f"      return connect({'group, ' if group else ''}function);\n"
            "  }\n" for group in ("", "int group, ")))
        self.name_arguments(name)


def guarded(match):
    result, method, name, parameters, body = match.groups()
    fallback = "" if result == "void" else f"      return default({result});\n"
    return (f"  private {result} {method}({parameters}) {{\n"
            f"    try {{\n{indented(body)}"
            "    } catch (global::System.Exception exception) {\n"
            f"      global::Orbelantine.Swig.HostCallbacks.Report(this, \"{name}\", exception);\n"
            f"{fallback}    }}\n  }}\n")


def indented(lines):
    return re.sub("^(?=.)", "  ", lines, flags=re.M)


def split(parameters):
    """Types and names."""
    return [tuple(parameter.rsplit(" ", 1)) for parameter in parameters.split(", ") if parameter]


def argument_names(parameters):
    """By their types, and numbered where a type comes twice."""
    kinds = {"string": "text", "bool": "flag", "error_code": "code", "ByteVector": "bytes", "BluetoothPeer": "peer",
             "BluetoothPeerVector": "peers", "AudioState": "state", "SWIGTYPE_p_boost__asio__ip__address": "address"}
    types = [type_ for type_, _ in split(parameters)]
    nouns = [kinds.get(type_, "function" if type_.endswith("Callback") else "map" if type_.startswith("Map") else "number")
             for type_ in types]
    return [noun if nouns.count(noun) == 1 else f"{noun}{nouns[:i + 1].count(noun)}" for i, noun in enumerate(nouns)]


def names(parameters):
    return ", ".join(name for _, name in split(parameters))


def delegate_type(result, parameters):
    types = [type_ for type_, _ in split(parameters)] + ([] if result == "void" else [result])
    kind = "Action" if result == "void" else "Func"
    return f"global::System.{kind}" + (f"<{', '.join(types)}>" if types else "")


def main(folder, headers):
    comments = HeaderComments(pathlib.Path(header) for header in headers)
    for path in sorted(pathlib.Path(folder).glob("*.cs")):
        Proxy(path, comments).mend()


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
