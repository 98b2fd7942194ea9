"""Ossa for scripts.

What the program has is called on this module: ossa.project(), ossa.graph(), ossa.openProject(path).
Objects of the program have the classes that dir(ossa) shows; help(ossa.Node) tells what each can do.
A script is one step of the history, unless it opens steps of its own with ossa.undoMacro(title).
"""

import builtins as _builtins
import collections as _collections
import enum as _enum
import sys as _sys

import _ossa

_module = _sys.modules["ossa"]

ErrorType = _enum.IntEnum("ErrorType", _ossa.error_types())


class Error(Exception):
    """A call that the program could not carry out: its type, an ErrorType, and its message."""

    def __init__(self, type, message):
        super().__init__(message)
        self.type = ErrorType(type)
        self.message = message


class Point(_collections.namedtuple("Point", "x y")):
    """A place, or a width and height. Calls take any two numbers in its stead."""

    __slots__ = ()

    def __add__(self, other):
        return Point(self.x + other[0], self.y + other[1])

    def __sub__(self, other):
        return Point(self.x - other[0], self.y - other[1])

    def __mul__(self, factor):
        return Point(self.x * factor, self.y * factor)


class Color(_collections.namedtuple("Color", "red green blue alpha", defaults=(1.0,))):
    """A colour, scene-linear. Calls take any three or four numbers in its stead."""

    __slots__ = ()


class Signal:
    """Something that an object tells: functions connected to it are called with its values."""

    __slots__ = ("_handle", "_name")

    def __init__(self, handle, name):
        self._handle = handle
        self._name = name

    def connect(self, function):
        """Has a function called whenever the signal is emitted."""
        if not callable(function):
            raise TypeError("a signal calls functions")
        number = _ossa.connect(self._handle, self._name)
        _functions[number] = function
        _connections.setdefault((self._handle, self._name, function), []).append(number)

    def disconnect(self, function):
        """Ends what connect() began."""
        for number in _connections.pop((self._handle, self._name, function), []):
            _functions.pop(number, None)
            _ossa.disconnect(number)


class Object:
    """An object of the program. It can be gone: calls of it raise an Error then."""

    __slots__ = ("_handle",)

    def __new__(cls, *arguments):
        raise TypeError("objects of the program are made by the program")

    def __eq__(self, other):
        return isinstance(other, Object) and self._handle == other._handle

    def __hash__(self):
        return hash(self._handle)

    def __repr__(self):
        try:
            return f'<ossa.{type(self).__name__} "{self.name}">'
        except AttributeError:
            return f"<ossa.{type(self).__name__}>"
        except (Error, RuntimeError):
            return f"<ossa.{type(self).__name__}, gone>"


class _UndoMacro:
    def __init__(self, title):
        self._title = title

    def __enter__(self):
        undo().begin(self._title)

    def __exit__(self, *_):
        undo().end()


def undoMacro(title):
    """For a with statement: what is done inside is a step of the history of its own."""
    return _UndoMacro(title)


class _Progress:
    def __init__(self, title, total):
        self._title = title
        self._total = total
        self._done = 0

    def __enter__(self):
        status().begin(self._title)
        status().set(0, self._total)
        return self

    def __exit__(self, *_):
        status().end()

    def step(self, count=1):
        """So much more is done."""
        self._done += count
        status().set(self._done, self._total)

    @property
    def cancelled(self):
        """The user wants the work stopped."""
        return status().cancelled


def progress(title, total=0):
    """For a with statement: shows the work inside in the status bar; step() tells how far it is."""
    return _Progress(title, total)


def invoke(object, slot, *arguments):
    """Calls a slot of the program's own object behind a script object, by name: what other parts of
    the program can call, too. For what no script class offers."""
    return _ossa.invoke(object._handle, slot, *arguments)


# --- the classes of the program

_classes = {}
_returned = {}  # (class, method) -> class of what it returns
_functions = {}
_connections = {}


def _make(name, handle):
    made = object.__new__(_classes[name])
    object.__setattr__(made, "_handle", handle)
    return made


def _method(name, doc):
    def call(self, *arguments):
        return _ossa.call(self._handle, name, arguments)

    call.__name__ = call.__qualname__ = name
    call.__doc__ = doc
    return call


def _property(name, doc, writable):
    def read(self):
        return _ossa.get(self._handle, name)

    def write(self, value):
        _ossa.set(self._handle, name, value)

    return property(read, write if writable else None, doc=doc)


def _signal(name, doc):
    return property(lambda self: Signal(self._handle, name), doc=doc)


def _build_classes():
    for entry in _ossa.classes():
        base = _classes.get(entry["base"], Object)
        members = {"__slots__": (), "__module__": "ossa", "__doc__": entry["doc"]}
        for method in entry["methods"]:
            members[method["name"]] = _method(method["name"], method["doc"])
            _returned[entry["name"], method["name"]] = method["returns"]
        for item in entry["properties"]:
            members[item["name"]] = _property(item["name"], item["doc"], item["writable"])
        for item in entry["signals"]:
            members[item["name"]] = _signal(item["name"], item["doc"])
        _classes[entry["name"]] = globals()[entry["name"]] = type(entry["name"], (base,), members)


def _in_main_thread():
    import threading

    return threading.current_thread() is threading.main_thread()


def _deliver(number, values):
    function = _functions.get(number)
    if function is None:
        return
    try:
        function(*values)
    except Exception as raised:
        _report(raised)


# --- running


class _Stream:
    encoding = "utf-8"
    errors = "replace"

    def __init__(self, is_error):
        self._is_error = is_error

    def write(self, text):
        _ossa.write(text.encode("utf-8", "replace").decode("utf-8"), self._is_error)
        return len(text)

    def writelines(self, lines):
        for line in lines:
            self.write(line)

    def flush(self):
        pass

    def isatty(self):
        return False

    def writable(self):
        return True


def _stop(_signal, _frame):
    _ossa.stop_at_every_line()
    raise KeyboardInterrupt


def _prepare(to_console, stop_signal):
    import pydoc
    import signal

    signal.signal(stop_signal, _stop)
    set_handler = signal.signal

    def set_other_handler(number, handler):
        if number == stop_signal:
            raise ValueError("this signal is what stops a script")
        return set_handler(number, handler)

    signal.signal = set_other_handler
    pydoc.pager = pydoc.plainpager
    if to_console:
        _sys.stdin = None
        _sys.stdout = _Stream(False)
        _sys.stderr = _Stream(True)
    _reset_names()


def _start():
    """Before each script. Only from the first on the program answers."""
    _sys.modules["ossa"] = _module
    if _classes:
        return
    _build_classes()
    application = _make("Application", _ossa.application())
    globals()["application"] = application
    for name in dir(type(application)):
        value = getattr(type(application), name)
        if not name.startswith("_") and callable(value):
            globals()[name] = getattr(application, name)


def __getattr__(name):
    if name == "version":
        return application.version
    raise AttributeError(f"module 'ossa' has no attribute '{name}'")


def _run_file(path, arguments):
    import types

    _start()
    with open(path, "rb") as file:
        code = compile(file.read(), path, "exec")
    module = types.ModuleType("__main__")
    module.__file__ = path
    module.__builtins__ = _builtins
    _sys.modules["__main__"] = module
    _sys.argv = [path, *arguments]
    kept = _sys.stdout, _sys.stderr, _sys.path[:]
    try:
        exec(code, module.__dict__)
    finally:  # a program of its own, with its own streams and folders
        _sys.stdout, _sys.stderr, _sys.path[:] = kept


_names = {}


def _reset_names():
    import types

    global _names
    module = types.ModuleType("__main__")
    module.ossa = _module
    _sys.modules["__main__"] = module
    _names = module.__dict__


def _run_input(text):
    import ast
    import linecache

    _start()
    linecache.cache["<console>"] = (len(text), None, text.splitlines(True), "<console>")
    tree = ast.parse(text, "<console>")
    last = None
    if tree.body and isinstance(tree.body[-1], ast.Expr):
        last = ast.Expression(tree.body.pop().value)
    exec(compile(tree, "<console>", "exec"), _names)
    if last is not None:
        _sys.displayhook(eval(compile(last, "<console>", "eval"), _names))


def _is_complete(text):
    import codeop

    try:
        return codeop.compile_command(text, "<console>", "single") is not None
    except (SyntaxError, ValueError, OverflowError):
        pass
    try:  # several statements
        compile(text, "<console>", "exec")
    except (SyntaxError, ValueError, OverflowError):
        return True
    last = text.rsplit("\n", 1)[-1]
    return not last.startswith((" ", "\t"))


def _report(raised):
    """Tells what a script raised. The exit code."""
    import traceback

    if isinstance(raised, SystemExit):
        if raised.code is None or isinstance(raised.code, int):
            return raised.code or 0
        print(raised.code, file=_sys.stderr)
        return 1
    if isinstance(raised, KeyboardInterrupt):
        print("Stopped", file=_sys.stderr)
        return 130
    told = traceback.TracebackException.from_exception(raised)
    step = told
    while step:  # without what lies between a script and the program
        step.stack[:] = [frame for frame in step.stack if frame.filename != "<ossa>"]
        step = step.__cause__ or step.__context__
    for line in told.format():
        _sys.stderr.write(line)
    return 1


def _finish(failed):
    """A script ended: waits for its threads, or ends them."""
    import threading

    for thread in threading.enumerate():
        if thread is threading.main_thread():
            continue
        if not failed and not thread.daemon:
            thread.join()
        elif failed and thread.ident:
            _ossa.interrupt_thread(thread.ident)
    for stream in (_sys.stdout, _sys.stderr):
        if stream:
            stream.flush()


# --- completion


def _class_of(chain):
    """Class of what a chain like "ossa.graph().node("x")" gives, without calling anything."""
    import re

    parts = re.findall(r"\.?(\w+)(\((?:[^()]|\([^()]*\))*\))?", chain)
    if not parts:
        return None
    (first, _), *rest = parts
    value = _names.get(first)
    if value is _module:
        value = _classes.get("Application")
    elif isinstance(value, Object):
        value = type(value)
    else:
        return None
    for name, called in rest:
        if not called:
            return None
        for base in value.__mro__:
            if (base.__name__, name) in _returned:
                value = _classes.get(_returned[base.__name__, name])
                break
        else:
            return None
        if value is None:
            return None
    return value


def _complete(text):
    import re
    import rlcompleter

    _start()
    dotted = re.search(r"((?:\w+(?:\((?:[^()]|\([^()]*\))*\))?\.)+)(\w*)$", text)
    if dotted:
        chain, start = dotted.group(1)[:-1], dotted.group(2)
        known = _class_of(chain)
        if known and chain != "ossa":
            names = (name for name in dir(known) if name.startswith(start))
            return sorted(name for name in names if start.startswith("_") or name[0] != "_")
        if "(" in chain:
            return []
    word = re.search(r"[\w.]*$", text).group()
    if not word:
        return []
    completer = rlcompleter.Completer(_names)
    found = []
    while (name := completer.complete(word, len(found))) is not None:
        found.append(name)
    names = {name.rstrip("( :").rsplit(".", 1)[-1] for name in found}
    return sorted(name for name in names if name)
