"""Any number of processes prints and saves what one machine does, and none survives another one's failure.

processes_test.py FOLDER [all|kill N TABLE] with the programs arbor and arbor-mpi in the folder, from the root of the
sources. "all" runs each command on each table with each number of processes; "kill" only kills a process at N moments
while a tree is grown on the table, and gives one too little memory.
"""
import concurrent.futures
import gzip
import os
import random
import re
import resource
import signal
import subprocess
import sys
import tempfile
import time

programs = os.path.abspath(sys.argv[1])
mode = sys.argv[2] if len(sys.argv) > 2 else ""
sources = os.getcwd()
numbers = (1, 2, 3, 4, 7)
os.environ.update(OMPI_ALLOW_RUN_AS_ROOT="1", OMPI_ALLOW_RUN_AS_ROOT_CONFIRM="1", PATH=programs + ":" + os.environ["PATH"])
failures = []


def on_one_machine(arguments):
    done = subprocess.run(["arbor"] + arguments, capture_output=True)
    return done.returncode, *without_times(done.stdout, done.stderr)


def in_processes(number, arguments, start="exec"):
    """`start` is a command of the shell that starts the program in each process."""
    for _ in range(2):
        launcher = launch(number, arguments, start)
        printed, messages, ended = outcome(launcher, 60)
        if ended:
            break
    return launcher.returncode, *without_times(printed, messages)


def outcome(launcher, seconds):
    """What it prints, and whether it ends by itself: seldom, Open MPI's launcher waits for ever for a lock of its own
    when all processes have ended."""
    try:
        return *launcher.communicate(timeout=seconds), True
    except subprocess.TimeoutExpired:
        launcher.kill()
        return *launcher.communicate(), False


def launch(number, arguments, start):
    return subprocess.Popen(["mpirun", "--oversubscribe", "-n", str(number), "sh", "-c",
                             start + ' arbor-mpi "$@"', "sh"] + arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE)


def without_times(printed, messages):
    printed = re.sub(rb"grown in [0-9.]* s", b"", printed)
    return printed, [line for line in messages.decode().splitlines() if line.startswith("arbor")]


def content(path):
    try:
        with open(path, "rb") as file:
            return file.read()
    except (FileNotFoundError, ProcessLookupError):
        return None


def expect(is_true, *what):
    if not is_true:
        failures.append(what)
        print("FAILED:", *what, flush=True)


def compare(number, arguments, result):
    """`result` is the option that names the file to write, if there is one."""
    outcomes = []
    for program in ("one", str(number)):
        folder = tempfile.mkdtemp(dir=".")
        path = os.path.join(folder, "result")
        full = arguments + ([result, path] if result else [])
        status, printed, messages = on_one_machine(full) if program == "one" else in_processes(number, full)
        messages = [line.replace("arbor-mpi: ", "arbor: ", 1).replace(folder, "") for line in messages]
        outcomes.append((status, printed, messages, content(path), os.listdir(folder)))
    for what, one, many in zip(("status", "output", "messages", "result", "files"), *outcomes):
        expect(one == many, number, "processes:", *arguments, "differs in", what, *([one, many] if what != "result" else []))


# -- Tables --

def write(name, lines, opened=open):
    with opened(name, "wt", newline="") as file:
        file.write("".join(line + "\n" for line in lines))
    return [name]


def rows(count, seed, cell, columns=6):
    choice = random.Random(seed)
    yield ",".join("a%d" % i for i in range(columns)) + ",w,class"
    for _ in range(count):
        cells = [cell(choice, i) for i in range(columns)]
        likely = "xyz"[sum(len(text) + ord(text[0]) // 3 for text in cells[:3]) % 3]
        yield ",".join(cells) + ",%.1f,%s" % (choice.random() * 3, choice.choice((likely, likely, "x")))


def digit(choice, column):
    return str(choice.randrange(10 ** (column % 3 + 1)))


def unknown_or_digit(choice, column):
    return "?" if choice.random() < 0.1 else digit(choice, column)


def text_of_lines(choice, column):
    return '"%s, ""%s""\n%s"' % tuple(choice.choice(("red", "green\n", "blue")) for _ in range(3)) if column else digit(choice, 0)


def tables():
    """Each with the options that it is read with."""
    data = sorted(name for name in os.listdir(os.path.join(sources, "data")) if name.endswith(".csv"))
    result = [([os.path.join(sources, "data", name)], []) for name in data]
    whole = list(rows(400, 5, unknown_or_digit))
    write("empty.csv", [])
    result += [
        (write("unknown.csv", rows(600, 1, unknown_or_digit)), ["--kind", "w=ignore"]),
        (write("weights.csv", rows(600, 2, unknown_or_digit)), ["--weights", "w"]),
        (write("whole.csv", rows(400, 10, digit)), ["--weights", "a0"]),
        (write("wide.csv", rows(30, 3, digit, 300)), []),
        (write("lines.csv", rows(100, 4, text_of_lines)), []),
        (write("few.csv", rows(3, 6, digit)), ["--min-weight", "1"]),
        (write("packed.csv.gz", rows(300, 7, digit), gzip.open), []),
        (write("texts.csv", rows(500, 8, lambda choice, i: "t%d" % choice.randrange(40 ** (i % 3 + 1)))), ["--weights", "w"]),
        (write("floats.csv", rows(300, 9, lambda choice, i: repr(choice.gauss(0, 10 ** (i * 5))))), ["--skip-unknown-class"]),
        (write("first.csv", whole[:8]) + ["empty.csv"] + write("second.csv", whole[:1] + whole[8:]), ["--weights", "w"]),
    ]
    return result


# -- What is compared --

def comparisons():
    models = {}
    for i, (paths, options) in enumerate(tables()):
        models[i] = "%d.model" % i
        on_one_machine(["grow", *paths, *options, "--model", models[i]])
        reading = options if "--weights" in options else []
        least = [] if "--min-weight" in options else ["--min-weight", "1"]
        commands = [["grow", *paths, *options],
                    ["grow", *paths, *options, *least, "--no-pruning"],
                    ["rate", *paths, *options, "--format", "json"],
                    ["classify", models[i], *paths, *reading],
                    ["grow", *paths, *options, "--holdout", "0.4", "--test", paths[0]]]
        results = ["--model", "--model", "--save-types", "--output", None]
        for j, number in enumerate(numbers):
            for k in range(5):
                if mode == "all" or (i + j) % 5 == k:
                    yield number, commands[k], results[k]


def faults():
    golf = os.path.join(sources, "data", "golf.csv")
    good = content(golf).decode()
    write("cells.csv", [good * 1 + "sunny,1,2,no"])
    write("class.csv", [good + "sunny,1,2,no,?"])
    write("quote.csv", [good + 'sunny,1,2,"no,yes'])
    write("weight.csv", [good.replace("humidity", "w") + "sunny,1,many,no,no"])
    write("stray.csv", [good + "sunny,1,much,no,no"])
    write("other.csv", ["a,b", "1,2"])
    with open("mark.csv", "w", encoding="utf-8") as file:
        file.write("\ufeff")
    subprocess.run(["arbor", "grow", golf, "--no-pruning", "--model", "golf.model"], capture_output=True)
    return [
        (3, ["grow", "none.csv"], "--model"),
        (3, ["grow", golf, "none.csv"], "--model"),
        (4, ["grow", "cells.csv"], "--model"),
        (2, ["grow", golf, "class.csv"], "--model"),
        (3, ["rate", "quote.csv"], None),
        (3, ["rate", "weight.csv", "--weights", "w"], None),
        (2, ["rate", golf, "other.csv"], None),
        (2, ["rate", golf, sources], None),
        (2, ["rate", golf, "--class", "plya"], None),
        (2, ["rate", golf, "--sort", "size"], None),
        (2, ["grow", golf, "--holdout", "1"], "--model"),
        (2, ["grow", golf, "--model", "/dev/full"], None),
        (2, ["grow", golf, "--model", golf], None),
        (3, ["classify", "golf.model", "stray.csv", "--strict"], None),
        (3, ["classify", "golf.model", golf, "cells.csv"], "--output"),
        (2, ["classify", golf, golf], None),
        (5, ["classify", "golf.model", golf, "mark.csv", golf], None),
    ]


# -- Failures of a single process --

def check_killing(moments, table):
    """A killed process ends the others; the launcher, told to end, ends all. An old model stays, or is replaced whole."""
    choice = random.Random(10)
    command = growing(table)
    on_one_machine(command)
    new = content("large.model")
    begin = time.monotonic()
    in_processes(3, command)
    length = time.monotonic() - begin
    for moment in range(moments):
        with open("large.model", "wb") as file:
            file.write(b"old")
        pids = ["pid%d" % rank for rank in range(3)]
        for name in filter(os.path.exists, pids):
            os.remove(name)
        launcher = launch(3, command, "echo $$ >pid$OMPI_COMM_WORLD_RANK; exec")
        while not all((content(name) or b"").endswith(b"\n") for name in pids):
            time.sleep(0.01)
        pids = [int(content(name)) for name in pids]
        victim = moment % 4
        delay = choice.random() * max(0, length - 0.3)  # less what the launcher takes before it starts them
        time.sleep(delay)
        killed = time.monotonic()
        too_late = launcher.poll() is not None or not all(map(is_running, pids))
        if not too_late and victim < 3:
            os.kill(pids[victim], signal.SIGKILL)
        elif not too_late:
            launcher.terminate()
        while any(map(is_running, pids)) and time.monotonic() < killed + 20:
            time.sleep(0.05)
        took = time.monotonic() - killed
        ended = outcome(launcher, 10)[2]
        status = launcher.returncode
        left = {b"old": "old", new: "new"}.get(content("large.model"), "damaged")
        who = "process %d" % victim if victim < 3 else "the launcher"
        print("%s killed after %.2f of %.2f s%s: status %d%s, the %s model, all gone after %.2f s"
              % (who, delay, length, ", too late" if too_late else "", status,
                 "" if ended else " of a launcher that did not end", left, took), flush=True)
        expect(too_late or status != 0, who, "was killed, but the status is 0")
        expect(left != "damaged", who, "was killed, and the model is damaged")
        expect(took < 10, who, "was killed, and processes are left")


def growing(table):
    return ["grow", table, "--no-pruning", "--threads", "1", "--model", "large.model", "--force"]


def is_running(pid):
    state = content("/proc/%d/stat" % pid)
    return state is not None and state.rpartition(b")")[2].split()[0] != b"Z"


def check_memory(table):
    """One process has ever more memory, until it has enough."""
    golf = os.path.join(sources, "data", "golf.csv")
    limit = 'test "$OMPI_COMM_WORLD_RANK" != %d || ulimit -v %d; exec'
    start = 1000000  # MPI itself needs much, and hangs without it
    while start > 100000 and in_processes(3, ["rate", golf], limit % (0, start))[0] == 0:
        start = start * 97 // 100
    start = start * 104 // 100
    for rank in range(3):
        for kilobytes in range(start, start + 10000000, 6000):
            with open("large.model", "wb") as file:
                file.write(b"old")
            status, _, messages = in_processes(3, growing(table), limit % (rank, kilobytes))
            print("process %d has %d kB: status %d" % (rank, kilobytes, status), *messages, flush=True)
            if status == 0:
                break
            expect(messages == ["arbor-mpi: out of memory"], "memory is short, but the messages are", messages)
            expect(content("large.model") == b"old", "memory is short, and the model has changed")


def main():
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    with tempfile.TemporaryDirectory() as folder:
        os.chdir(folder)
        if mode != "kill":
            with concurrent.futures.ThreadPoolExecutor(2) as pool:
                done = list(pool.map(lambda compared: compare(*compared), list(comparisons()) + faults()))
            print(len(done), "comparisons", flush=True)
            check_killing(4, *write("large.csv", rows(100000, 11, digit)))
        else:
            table = os.path.join(sources, sys.argv[4])
            check_killing(int(sys.argv[3]), table)
            check_memory(table)
        os.chdir(sources)
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
