"""Installs and removes the agent in all forms where a real systemd, bus and polkit run: in a container of this
machine's own root, over which a temporary file system takes what is written.

usage: real_systemd.py CMAKE BUILD

What the folder BUILD holds is installed by CMAKE as the administrator of a computer would.
Where a container cannot be made, the exit status is 77 and the reason is said.
"""
import contextlib
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import time
import unittest

SKIPPED = 77
SECONDS_TO_BOOT = 40
LABEL = "org.zelk.lullwatch.agent"
PROGRAM = "/usr/bin/lullwatch"
HOME = "/usr/share/lullwatch"
ACTIONS = "/usr/share/polkit-1/actions/org.zelk.lullwatch.policy"
RULE = """polkit.addRule(function(action, subject) {
    if (action.id.startsWith("org.zelk.lullwatch.") && subject.user == "may") { return polkit.Result.YES; }
});
"""
# Runs a program at a terminal of its own as a user, types his password when asked, and tells how often that was and
# how the program ended.
TERMINAL = '''
import os, pty, pwd, sys, termios, time
user, password, *command = sys.argv[1:]
person = pwd.getpwnam(user)
child, terminal = pty.fork()
if child == 0:
    os.initgroups(user, person.pw_gid)
    os.setgid(person.pw_gid)
    os.setuid(person.pw_uid)
    os.execve(command[0], command, {"PATH": "/usr/bin:/bin", "HOME": person.pw_dir})
said, asked = b"", 0
while True:
    try:
        said += os.read(terminal, 4096)
    except OSError:
        break
    if said.count(b"Password:") > asked:
        asked += 1
        while termios.tcgetattr(terminal)[3] & termios.ECHO: # what was typed before it is hidden is thrown away
            time.sleep(0.01)
        os.write(terminal, password.encode() + b"\\n")
status = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])
print(said.decode(errors="replace"))
print(asked, status)
'''
SERVED = ["dbus-send", "--system", "--print-reply", f"--dest={LABEL}._service", "/org/zelk/lullwatch/agent/service"]


class Unable(Exception):
    """No container can be made here."""


def run(*command, **options):
    return subprocess.run(command, text=True, capture_output=True, check=False, **options)


def reason_to_skip():
    if os.geteuid() != 0:
        return "only the administrator can make containers"
    for program in ("systemd-nspawn", "nsenter", "pkexec", "dbus-daemon", "unshare"):
        if not shutil.which(program):
            return f"{program} is not installed"
    if not pathlib.Path("/usr/lib/polkit-1/polkitd").exists():
        return "polkitd is not installed"
    return None


def skip(why):
    print(f"SKIP: {why}", flush=True)
    return SKIPPED


class Container:
    """Boots in its constructor; close() ends it and takes everything away."""

    def __init__(self, prepare):
        self.stack = contextlib.ExitStack()
        try:
            self.boot(prepare)
        except BaseException:
            self.close()
            raise

    def close(self):
        self.stack.close()

    def boot(self, prepare):
        folder = pathlib.Path("/tmp") / f"lullwatch-{os.getpid()}"
        folder.mkdir()
        self.stack.callback(shutil.rmtree, folder, ignore_errors=True)
        self.mount(folder, "tmpfs", "size=1g")
        for name in ("up", "work", "root"):
            (folder / name).mkdir()
        self.root = folder / "root"
        self.mount(self.root, "overlay", f"lowerdir=/,upperdir={folder}/up,workdir={folder}/work")
        prepare(self.root)
        groups = self.make_groups(folder.name)
        words = open(folder / "console", "wb")
        self.stack.callback(words.close)
        self.process = subprocess.Popen(
            ["systemd-nspawn", "-D", self.root, f"--machine={folder.name}", "--register=no", "--keep-unit",
             "--console=pipe", "--link-journal=no", "-b", "systemd.mask=postgresql.service"],
            stdin=subprocess.DEVNULL, stdout=words, stderr=words, start_new_session=True,
            preexec_fn=lambda: [(group / "cgroup.procs").write_text("0") for group in groups])
        self.stack.callback(self.end)
        self.wait(folder / "console")

    def mount(self, place, kind, options):
        if run("mount", "-t", kind, kind, place, "-o", options).returncode != 0:
            raise Unable(f"{kind} cannot be mounted")
        self.stack.callback(run, "umount", "-l", place)

    def make_groups(self, name):
        groups = []
        for hierarchy in sorted(pathlib.Path("/sys/fs/cgroup").iterdir()):
            if not hierarchy.is_symlink() and (hierarchy / "cgroup.procs").exists():
                group = hierarchy / name
                with contextlib.suppress(OSError):
                    group.mkdir()
                    if hierarchy.name == "cpuset":
                        for setting in ("cpuset.cpus", "cpuset.mems"):
                            (group / setting).write_text((hierarchy / setting).read_text())
                    groups.append(group)
                    self.stack.callback(self.remove_group, group)
        return groups

    @staticmethod
    def remove_group(group):
        for folder, _folders, _files in os.walk(group, topdown=False):
            with contextlib.suppress(OSError):
                os.rmdir(folder)

    def wait(self, console):
        end = time.monotonic() + SECONDS_TO_BOOT
        while time.monotonic() < end and self.process.poll() is None:
            children = pathlib.Path(f"/proc/{self.process.pid}/task/{self.process.pid}/children").read_text().split()
            if children:
                self.leader = children[0]
                if self.root_run("systemctl", "is-system-running").stdout.strip() in ("running", "degraded"):
                    return
            time.sleep(0.1)
        raise Unable("systemd does not start in a container here: " + console.read_text(errors="replace")[-500:])

    def end(self):
        if self.process.poll() is None and hasattr(self, "leader"):
            self.root_run("systemctl", "poweroff")
        try:
            self.process.wait(10)
        except subprocess.TimeoutExpired:
            os.killpg(self.process.pid, signal.SIGKILL)
            self.process.wait()

    def root_run(self, *command):
        return run("nsenter", "-t", self.leader, "-a", *command)

    def user_run(self, user, *command):
        uid = self.root_run("id", "-u", user).stdout.strip()
        return self.root_run("runuser", "-u", user, "--", "env", "-u", "XDG_CONFIG_HOME", "-u", "ZELK_MAIN_BUNDLE",
                             "-u", "XDG_DATA_HOME", f"XDG_RUNTIME_DIR=/run/user/{uid}",
                             f"DBUS_SESSION_BUS_ADDRESS=unix:path=/run/user/{uid}/bus",
                             f"HOME=/home/{user}", *command)


def prepare(root):
    cmake, build = sys.argv[1:3]
    installation = run(cmake, "--install", build, "--prefix", "/usr", env={**os.environ, "DESTDIR": str(root)})
    if installation.returncode != 0:
        sys.exit(installation.stdout + installation.stderr)
    rules = root / "etc/polkit-1/rules.d/10-test.rules"
    rules.parent.mkdir(parents=True, exist_ok=True)
    rules.write_text(RULE)


class RealSystemd(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        try:
            cls.container = Container(prepare)
        except Unable as unable:
            sys.exit(skip(unable))
        cls.addClassCleanup(cls.container.close)
        for user in ("may", "maynot"):
            cls.container.root_run("useradd", "-m", user)
            cls.container.root_run("loginctl", "enable-linger", user)
            cls.container.root_run("systemctl", "start", f"user@{cls.uid(user)}.service")

    @classmethod
    def uid(cls, user):
        return cls.container.root_run("id", "-u", user).stdout.strip()

    def agent(self, user, *words):
        return self.container.user_run(user, PROGRAM, "agent", *words)

    def shell(self, command):
        return self.container.root_run("sh", "-c", command)

    def status(self, user):
        return json.loads(self.agent(user, "status", "--format", "json").stdout)["state"]

    def succeed(self, state, user, *words):
        result = self.agent(user, *words)
        self.assertEqual((result.returncode, self.status(user)), (0, state), result.stderr + self.journal())

    def refuse(self, state, user, *words, why="you were not given the right"):
        result = self.agent(user, *words)
        self.assertEqual((result.returncode, self.status(user)), (1, state), result.stderr + self.journal())
        self.assertIn(why, result.stderr)

    def journal(self):
        return self.container.root_run("journalctl", "-b", "--no-pager", "-n", "30").stdout

    def assert_delays_sleep(self):
        held = self.container.root_run("systemd-inhibit", "--list", "--no-legend").stdout
        self.assertEqual(held.count("Lullwatch"), 2, held + self.journal())

    def test_system(self):
        self.assertEqual(self.status("may"), 1)
        self.refuse(1, "maynot", "install", "--as", "system", why="nothing here can ask for a password; use sudo")
        self.succeed(2, "may", "install", "--as", "system")
        self.assertEqual(self.status("maynot"), 2)
        self.assert_delays_sleep()
        self.check_bus_policy()
        self.assertIn("events.db", self.container.root_run("ls", "/var/lib/lullwatch").stdout)
        self.update("may", 2)
        self.refuse(2, "maynot", "remove")
        self.succeed(1, "may", "remove")
        self.assert_nothing_is_left()

    def assert_nothing_is_left(self):
        left = self.shell("ls -d /opt/lullwatch /etc/dbus-1/system.d/*lullwatch* "
                          "/etc/systemd/system/*lullwatch* /etc/systemd/system/*.wants/*lullwatch*")
        self.assertEqual(left.stdout, "")

    def test_not_installed(self):
        self.shell(f"mv {ACTIONS} /root/policy; systemctl restart polkit")
        self.refuse(1, "may", "install", "--as", "system", why="Lullwatch is not installed on this computer")
        self.shell(f"mv /root/policy {ACTIONS}; systemctl restart polkit")

    def test_what_others_can_change_is_not_installed(self):
        self.shell(f"cp -r {HOME} /srv/lullwatch; chown may /srv/lullwatch/agents")
        uid = self.uid("may")
        result = self.shell(f"PKEXEC_UID={uid} /srv/lullwatch/lullwatch-installer install")
        self.assertEqual(result.returncode, 1)
        self.assertIn("/srv/lullwatch/agents: does not belong to the administrator", result.stderr)
        self.assert_nothing_is_left()

    def test_broken_agent_is_removed(self):
        self.succeed(2, "may", "install", "--as", "system")
        program = f"/opt/lullwatch/agents/{LABEL}.app/lullwatch-agent"
        self.shell(f"rm {program}; ln -s /bin/false {program}; systemctl restart {LABEL}")
        self.assertEqual(self.status("may"), 6)
        self.refuse(6, "maynot", "remove")
        self.succeed(1, "may", "remove")
        self.assert_nothing_is_left()

    def test_removal_whose_last_step_was_refused(self):
        self.succeed(2, "may", "install", "--as", "system")
        self.shell("mv /usr/bin/pkexec /usr/bin/pkexec.off")
        self.refuse(2, "may", "remove", why="could not be stopped")
        self.shell("mv /usr/bin/pkexec.off /usr/bin/pkexec")
        self.succeed(1, "may", "remove")
        self.assert_nothing_is_left()

    def test_failed_replacement(self):
        self.succeed(2, "may", "install", "--as", "system")
        program = f"/srv/other/agents/{LABEL}.app/lullwatch-agent"
        self.shell(f"cp -r {HOME} /srv/other; cp /bin/false {program}")
        result = self.container.root_run("/srv/other/lullwatch-installer", "install")
        self.assertEqual(result.returncode, 1, result.stderr)
        self.assertEqual(self.status("may"), 2, self.journal())
        self.succeed(1, "may", "remove")
        self.assert_nothing_is_left()

    def test_two_at_once(self):
        both = f"for n in 1 2; do {HOME}/lullwatch-installer %s & done; wait"
        result = self.shell(both % "install")
        self.assertEqual((result.stderr, self.status("may")), ("", 2), self.journal())
        result = self.shell(both % "remove --purge")
        self.assertEqual((result.stderr, self.status("may")), ("", 1), self.journal())
        self.assert_nothing_is_left()

    def test_password_on_a_terminal(self):
        self.shell("useradd -m -G sudo asks; echo asks:secret | chpasswd")
        for words, state in ((("install", "--as", "system"), 2), (("remove",), 1)):
            result = self.container.root_run("python3", "-c", TERMINAL, "asks", "secret", PROGRAM, "agent", *words)
            self.assertEqual(result.stdout.splitlines()[-1], "1 0", result.stdout + result.stderr + self.journal())
            self.assertEqual(self.status("may"), state)

    def check_bus_policy(self):
        interface = "org.zelk.ZELKAgentServiceProtocol"
        version = self.container.user_run("maynot", *SERVED, f"{interface}.version")
        self.assertIn("0.1.0", version.stdout, version.stderr)
        setting = [*SERVED, f"{interface}.setDefaultsWithDictionary", "dict:string:string:"]
        self.assertIn("AccessDenied", self.container.user_run("may", *setting).stderr)
        self.assertNotIn("AccessDenied", self.container.root_run(*setting).stderr)
        owner = self.container.root_run("busctl", "status", LABEL).stdout
        self.assertIn(f"\nUnit={LABEL}.service\n", owner)
        self.assertNotIn("\nUID=0\n", owner)
        exposure = self.container.root_run("systemd-analyze", "security", "--no-pager", "--threshold=15",
                                           f"{LABEL}.service", f"{LABEL}-removal.service")
        self.assertEqual(exposure.returncode, 0, exposure.stdout)

    def test_user(self):
        self.succeed(3, "maynot", "install", "--as", "user")
        self.assert_delays_sleep()
        self.assertIn("ExecStart", self.in_home(f"cat .config/systemd/user/{LABEL}.service"))
        self.assertIn("events.db", self.in_home(f"ls .local/share/{LABEL}"))
        self.update("maynot", 3)
        self.succeed(1, "maynot", "remove")
        self.assertEqual(self.in_home("find . -name '*lullwatch*' -type f"), "")

    def test_user_folders_of_a_shell(self):
        home = "/home/maynot"
        agent = ["env", f"XDG_DATA_HOME={home}/data", f"XDG_CONFIG_HOME={home}/settings", PROGRAM, "agent"]
        result = self.container.user_run("maynot", *agent, "install", "--as", "user")
        self.assertEqual(result.returncode, 0, result.stderr + self.journal())
        self.assertIn("events.db", self.in_home(f"ls data/{LABEL}"))
        # It records again after somebody tidied up, even at the service manager's hands.
        self.in_home(f"rm -r data/{LABEL} settings/{LABEL}")
        restart = self.container.user_run("maynot", "systemctl", "--user", "restart", LABEL)
        self.assertEqual(restart.returncode, 0, restart.stderr + self.journal())
        self.assertIn("events.db", self.in_home(f"ls data/{LABEL}"))
        self.assertEqual(self.container.user_run("maynot", *agent, "remove").returncode, 0)
        self.assertEqual(self.in_home(f"find . -name '{LABEL}.*'"), "")
        self.in_home("rm -r data settings")

    def update(self, user, form):
        """An application of another version brings its own agent, which is another process."""
        process = ["pgrep", "-u", "_lullwatch" if form == 2 else user, "lullwatch-agent"]
        before = self.container.root_run(*process).stdout
        info = self.container.root / HOME[1:] / "Info.plist"
        text = info.read_text()
        info.write_text(re.sub(r"(CFBundleVersion</key>\s*<string>)[^<]*", r"\g<1>other", text))
        self.succeed(form, user, "update")
        info.write_text(text)
        after = self.container.root_run(*process).stdout
        self.assertTrue(before and after and before != after, (before, after))

    def in_home(self, command):
        return self.shell(f"cd ~maynot && {command}").stdout


if __name__ == "__main__":
    WHY = reason_to_skip()
    if WHY:
        sys.exit(skip(WHY))
    unittest.main(argv=sys.argv[:1], verbosity=2)
