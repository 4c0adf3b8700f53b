"""What a service's unit lets it do, laid upon the test: the unit's settings as system call filters, by the means that
systemd uses itself, on one process and all that it starts.  Each call that is refused is told, whoever makes it and
whatever is made of the refusal."""
import collections
import ctypes
import errno
import fcntl
import os
import pathlib
import select
import signal
import socket
import subprocess
import traceback

ALLOW = 0x7FFF0000
NOTIFY = 0x7FC00000
MASKED_EQUAL = 7
RECEIVE, ANSWER = 0xC0502100, 0xC0182101  # requests of a filter's listener; the library's own want a filter loaded
INT = 0xFFFFFFFF
NEW_NAMESPACES = 0x7E020080  # every CLONE_NEW... flag
SET_ID_BITS = 0o6000
WRITE, EXECUTE = 2, 4


def is_file_mode(argument):
    return [[(argument, SET_ID_BITS, 0)]]


def is_mode_of_what_is_made(flags, mode):
    return [[(flags, os.O_CREAT, 0)], [(flags, os.O_CREAT, os.O_CREAT), (mode, SET_ID_BITS, 0)]]


# What a setting leaves of a call: any of the alternatives, each a list of (argument, mask, value) that all must hold.
LEFT = {
    "MemoryDenyWriteExecute": {
        "mmap": [[(2, WRITE | EXECUTE, protection)] for protection in (0, WRITE, EXECUTE)],
        "mprotect": [[(2, EXECUTE, 0)]],
        "pkey_mprotect": [[(2, EXECUTE, 0)]],
        "shmat": [[(2, 0o100000, 0)]],
    },
    "RestrictAddressFamilies": {"socket": [[(0, INT, int(socket.AF_UNIX))]]},
    "RestrictNamespaces": {
        "clone": [[(0, NEW_NAMESPACES, 0)]],
        "unshare": [[(0, NEW_NAMESPACES, 0)]],
        "setns": [],
        "clone3": [],  # its flags are out of a filter's reach
    },
    "LockPersonality": {"personality": [[(0, INT, 0)], [(0, INT, INT)]]},
    "RestrictRealtime": {
        "sched_setscheduler": [[(1, INT, policy)] for policy in (os.SCHED_OTHER, os.SCHED_BATCH, os.SCHED_IDLE)],
    },
    "RestrictSUIDSGID": {
        "chmod": is_file_mode(1), "fchmod": is_file_mode(1), "fchmodat": is_file_mode(2),
        "mkdir": is_file_mode(1), "mkdirat": is_file_mode(2),
        "mknod": is_file_mode(1), "mknodat": is_file_mode(2), "creat": is_file_mode(1),
        "open": is_mode_of_what_is_made(1, 2), "openat": is_mode_of_what_is_made(2, 3),
        "openat2": [],  # its flags are out of a filter's reach
    },
}
# Programs go on without these, as on a system that never had them: to be refused them is no failure.
AS_IF_UNKNOWN = {"clone3", "openat2"}
ERRORS = {"socket": errno.EAFNOSUPPORT}  # EPERM otherwise


class Comparison(ctypes.Structure):
    _fields_ = [("argument", ctypes.c_uint), ("how", ctypes.c_int), ("mask", ctypes.c_uint64),
                ("value", ctypes.c_uint64)]


class Call(ctypes.Structure):
    _fields_ = [("id", ctypes.c_uint64), ("process", ctypes.c_uint32), ("flags", ctypes.c_uint32),
                ("number", ctypes.c_int), ("machine", ctypes.c_uint32), ("place", ctypes.c_uint64),
                ("arguments", ctypes.c_uint64 * 6)]


class Answer(ctypes.Structure):
    _fields_ = [("id", ctypes.c_uint64), ("value", ctypes.c_int64), ("error", ctypes.c_int32),
                ("flags", ctypes.c_uint32)]


def name_of(process):
    try:
        return pathlib.Path(f"/proc/{process}/comm").read_text().strip()
    except OSError:
        return "?"  # killed meanwhile


def load_library():
    library = ctypes.CDLL("libseccomp.so.2")
    library.seccomp_init.restype = ctypes.c_void_p
    library.seccomp_init.argtypes = [ctypes.c_uint32]
    library.seccomp_load.argtypes = [ctypes.c_void_p]
    library.seccomp_notify_fd.argtypes = [ctypes.c_void_p]
    library.seccomp_rule_add_array.argtypes = [ctypes.c_void_p, ctypes.c_uint32, ctypes.c_int, ctypes.c_uint,
                                               ctypes.POINTER(Comparison)]
    library.seccomp_syscall_resolve_num_arch.restype = ctypes.c_char_p
    return library


def read_groups():
    """The system calls of each of systemd's groups, by its name with the @."""
    text = subprocess.run(["systemd-analyze", "syscall-filter", "--no-pager"], check=True, capture_output=True,
                          text=True).stdout
    groups = collections.defaultdict(set)
    name = None
    for line in text.splitlines():
        if line.startswith("@"):
            name = line
        elif name and (word := line.strip()) and not word.startswith("#"):
            groups[name].add(word)

    def expand(word):
        return set().union(*map(expand, groups[word])) if word.startswith("@") else {word}
    return {group: expand(group) for group in list(groups)}


def why_not():
    """Why nothing can be confined here; None when it can."""
    try:
        load_library()
    except OSError:
        return "not installed: libseccomp2"
    actions = pathlib.Path("/proc/sys/kernel/seccomp/actions_avail")
    if not actions.exists() or "user_notif" not in actions.read_text().split():
        return "the system does not tell which calls a filter refuses"
    return None


class Confined:
    """settings: the unit's [Service] section."""

    def __init__(self, settings):
        self._library = load_library()
        groups = read_groups()
        self._known = groups["@known"]
        self._allowed = set(groups["@default"])
        for word in settings["SystemCallFilter"].split():
            assert not word.startswith("~"), "a list of what is refused is not understood here"
            self._allowed |= groups[word] if word.startswith("@") else {word}
        self._left = {}
        for setting, left in LEFT.items():
            if settings.get(setting, "no") not in ("no", "none"):
                self._left |= left

    def run(self, work):
        """Calls work() in a confined process, where it must not fail; returns the calls that were refused, as text."""
        ours, theirs = socket.socketpair()
        process = os.fork()
        if process == 0:
            self._work(work, theirs)
        theirs.close()
        with ours:
            ours.settimeout(60)  # a filter so strict that the process cannot even send waits for an answer for ever
            try:
                _, descriptors, _, _ = socket.recv_fds(ours, 1, 1)
            except TimeoutError:
                os.kill(process, signal.SIGKILL)
                descriptors = []
        refused = self._refuse(descriptors[0]) if descriptors else []
        if os.waitstatus_to_exitcode(os.waitpid(process, 0)[1]) != 0:
            raise AssertionError(f"failed when confined; refused were: {refused}")
        return refused

    def _work(self, work, parent):
        status = 1
        try:
            with parent:
                socket.send_fds(parent, [b"x"], [self._load()])
            work()
            status = 0
        except BaseException:  # this is not the process that runs the tests
            traceback.print_exc()
        finally:
            os._exit(status)

    def _load(self):
        library = self._library
        filter_ = library.seccomp_init(NOTIFY)
        for name in sorted(self._allowed):
            number = library.seccomp_syscall_resolve_name(name.encode())
            if number < 0:
                continue  # not of this machine
            for alternative in self._left.get(name, [[]]):
                conditions = (Comparison * len(alternative))(
                    *(Comparison(argument, MASKED_EQUAL, mask, value) for argument, mask, value in alternative))
                status = library.seccomp_rule_add_array(filter_, ALLOW, number, len(alternative), conditions)
                assert status == 0, (name, status)
        status = library.seccomp_load(filter_)
        assert status == 0, os.strerror(-status)
        return library.seccomp_notify_fd(filter_)

    def _refuse(self, descriptor):
        """Until nobody confined is left; what was refused."""
        refused = []
        poll = select.poll()
        poll.register(descriptor, select.POLLIN)
        while not poll.poll()[0][1] & select.POLLHUP:
            call = Call()
            try:
                fcntl.ioctl(descriptor, RECEIVE, call)
                fcntl.ioctl(descriptor, ANSWER, Answer(call.id, 0, -self._error(call), 0))
            except FileNotFoundError:
                continue  # the caller was killed meanwhile
            if self._error(call) != errno.ENOSYS:
                arguments = ", ".join(hex(argument) for argument in call.arguments)
                refused.append(f"{name_of(call.process)}: {self._name(call)}({arguments})")
        os.close(descriptor)
        return refused

    def _name(self, call):
        return (self._library.seccomp_syscall_resolve_num_arch(call.machine, call.number) or b"").decode()

    def _error(self, call):
        name = self._name(call)
        unknown = name in AS_IF_UNKNOWN or name not in self._known
        return errno.ENOSYS if unknown else ERRORS.get(name, errno.EPERM)
