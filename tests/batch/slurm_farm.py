"""A farm of one node on this machine: munge, the controller and the node daemon of Slurm, without systemd, as root."""

import os
import pathlib
import signal
import socket
import subprocess
import time

CONFIGURATION = """\
ClusterName=farm
SlurmctldHost={host}(127.0.0.1)
SlurmctldPort={controller_port}
SlurmdPort={node_port}
AuthType=auth/munge
AuthInfo=socket={folder}/munge.socket
SlurmUser=root
SlurmdUser=root
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/slurmd.pid
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerType=sched/backfill
SchedulerParameters=batch_sched_delay=0,sched_min_interval=100000
ReturnToService=2
SlurmdTimeout=60
KillWait=5
MinJobAge=10
NodeName={host} NodeAddr=127.0.0.1 CPUs={processors} RealMemory=1000
PartitionName=night Nodes={host} Default=YES State=UP
"""


def free_ports(count):
    sockets = [socket.socket() for _ in range(count)]
    for one in sockets:
        one.bind(("127.0.0.1", 0))
    ports = [one.getsockname()[1] for one in sockets]
    for one in sockets:
        one.close()
    return ports


def wait_until(what, holds, seconds=60):
    end = time.monotonic() + seconds
    while not holds():
        if time.monotonic() > end:
            raise SystemExit(f"error: after {seconds} s: {what}")
        time.sleep(0.2)


class Farm:
    """`folder` is an empty one of plain letters. `environment` is for everything that talks to the farm."""

    def __init__(self, folder, environment):
        self.folder = pathlib.Path(folder)
        self.host = socket.gethostname().split(".")[0]
        self.environment = dict(environment, SLURM_CONF=f"{folder}/slurm.conf")
        self.daemons = {}

    def __enter__(self):
        controller_port, node_port = free_ports(2)
        for name in ("state", "spool"):
            (self.folder / name).mkdir()
        (self.folder / "slurm.conf").write_text(CONFIGURATION.format(
            host=self.host, folder=self.folder, controller_port=controller_port, node_port=node_port,
            processors=os.cpu_count()))
        key = self.folder / "munge.key"
        key.write_bytes(os.urandom(128))
        key.chmod(0o400)
        try:
            self.start("munged", "--foreground", "--force", f"--key-file={key}", f"--socket={self.folder}/munge.socket",
                       f"--pid-file={self.folder}/munge.pid", f"--log-file={self.folder}/munge.log",
                       f"--seed-file={self.folder}/munge.seed")
            wait_until("munge does not run", lambda: (self.folder / "munge.socket").exists())
            self.start("slurmctld", "-D")
            self.start_node()
            wait_until("the node is not ready", lambda: self.ask("sinfo", "-h", "-o", "%t").strip() in ("idle", "mix"))
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for name in ("slurmd", "slurmctld", "munged"):
            self.end(name, signal.SIGTERM)

    def start(self, name, *options):
        path = next(path for path in (f"/usr/sbin/{name}", f"/usr/local/sbin/{name}") if os.path.exists(path))
        log = open(self.folder / f"{name}.log", "ab")
        self.daemons[name] = subprocess.Popen([path, *options], env=self.environment, stdin=subprocess.DEVNULL,
                                              stdout=log, stderr=log)
        log.close()

    def start_node(self):
        self.start("slurmd", "-D", "-N", self.host)

    def end(self, name, number):
        daemon = self.daemons.pop(name, None)
        if daemon is not None:
            daemon.send_signal(number)
            try:
                daemon.wait(20)
            except subprocess.TimeoutExpired:
                daemon.kill()
                daemon.wait()

    def ask(self, *words):
        run = subprocess.run(words, env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        return run.stdout

    def is_idle(self):
        """Whether no job waits or runs. An answer that does not come is none."""
        run = subprocess.run(["squeue", "-h"], env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        return run.returncode == 0 and run.stdout == b""
