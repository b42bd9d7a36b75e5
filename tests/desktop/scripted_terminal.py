"""A pseudo-terminal that answers by a script, and what it was sent."""
import contextlib
import fcntl
import os
import pty
import select
import signal
import struct
import subprocess
import termios
import time

ATTRIBUTES = b"\x1b[c"  # the last question
PLAIN = b"\x1b[?1;2c"  # a VT100 with its advanced video option: no graphics
SIXEL = b"\x1b[?62;4;22c"
KITTY = b"\x1b_Gi=31;OK\x1b\\\x1b[?62;22c"


class Run:
    def __init__(self, exit_code, output, seconds, restored, err):
        self.exit_code, self.output, self.seconds, self.restored, self.err = exit_code, output, seconds, restored, err

    @property
    def asked(self):
        return ATTRIBUTES in self.output

    @property
    def drawn(self):
        """Everything behind the question; the driver of the terminal has put a return before each line break."""
        return self.output.split(ATTRIBUTES)[-1].replace(b"\r\n", b"\n")


def run_in_terminal(command, *, answer=b"", pieces=1, delay=0.0, then=None, columns=80, rows=24, cell=(0, 0),
                    environment=None, stdin=None, called_at=None, patience=30):
    """Answers the question in `pieces`, each `delay` seconds after the one before. `then`, a function of the process and
    of the master, is called once when the question or, with `called_at`, so many bytes have come. Nothing is read
    until it returns."""
    master, slave = pty.openpty()
    fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, columns * cell[0], rows * cell[1]))
    before = termios.tcgetattr(slave)

    def begin():
        os.setsid()
        fcntl.ioctl(slave, termios.TIOCSCTTY, 0)

    variables = {k: v for k, v in os.environ.items() if k not in ("NO_COLOR", "COLORTERM")}
    variables.update({"TERM": "xterm-256color", **(environment or {})})
    began = time.monotonic()
    process = subprocess.Popen(command, stdin=slave if stdin is None else stdin, stdout=slave, stderr=subprocess.PIPE,
                               preexec_fn=begin, env=variables)
    output, due, answered, done = b"", [], False, False
    size = -(-len(answer) // pieces)
    while True:
        now = time.monotonic()
        while due and due[0][0] <= now:
            os.write(master, due.pop(0)[1])
        ended = process.poll() is not None
        if select.select([master], [], [], 0.01)[0]:
            with contextlib.suppress(OSError):
                output += os.read(master, 65536)
        elif ended:
            break
        if not answered and ATTRIBUTES in output:
            answered = True
            due = [(now + delay * (i + 1), answer[i * size:(i + 1) * size]) for i in range(pieces if answer else 0)]
        if not done and then is not None and (answered if called_at is None else len(output) >= called_at):
            done = True
            then(process, master)
        if now - began > patience:
            process.kill()
            raise AssertionError(f"still running after {patience} seconds, with {output[-200:]!r}")
    err = process.stderr.read().decode()
    process.stderr.close()
    seconds = time.monotonic() - began
    restored = termios.tcgetattr(slave) == before
    os.close(master)
    os.close(slave)
    code = process.returncode
    return Run(128 - code if code < 0 else code, output, seconds, restored, err)


def interrupt(process, master):
    """Ctrl-C."""
    del process
    time.sleep(0.1)
    os.write(master, b"\x03")


def terminate(process, master):
    del master
    time.sleep(0.1)
    process.send_signal(signal.SIGTERM)
