"""Exceptions for statuses, and for what the library logs."""
from ._ravik import ffi, lib


class Error(Exception):
    """A call that did not do its work. `status` is the RAVIK_ constant."""
    status = None


class Fail(Error):
    """it failed"""
    status = lib.RAVIK_EFAIL


class UnalignParam(Error, ValueError):
    """an argument is not aligned as it must be"""
    status = lib.RAVIK_EUNALIGNPARAM


class BadParam(Error, ValueError):
    """bad arguments"""
    status = lib.RAVIK_EBADPARAM


class InvalState(Error):
    """not allowed in this state"""
    status = lib.RAVIK_EINVALSTATE


class NoResources(Error, MemoryError):
    """no memory"""
    status = lib.RAVIK_ENORES


class Unsupported(Error):
    """not supported"""
    status = lib.RAVIK_EUNSUPPORTED


class HwNdsp(Error):
    """a failure of the DSP"""
    status = lib.RAVIK_EHWNDSP


class HwGpu(Error):
    """a failure of the GPU"""
    status = lib.RAVIK_EHWGPU


STATUSES = {each.status: each for each in Error.__subclasses__()}


def taken_log():
    """What the library has logged in this thread, and it is forgotten."""
    text = ffi.new("char[]", 1024)
    lib.ravikTakeLog(text, 1024)
    return ffi.string(text).decode(errors="replace").strip()


def failed(function, status):
    """The exception for a status; -1 is what plain integers say of bad arguments."""
    kind = STATUSES.get(status, BadParam)
    return kind(f"{function}: {taken_log() or kind.__doc__}")


def logged(function):
    """The exception for what a function without a status has logged."""
    text = taken_log()
    if "no scratch memory" in text:
        return NoResources(text)
    return ValueError(text) if function in text else ValueError(f"{function}: {text}")
