"""What the scripts of this folder share: where the programs are, what the machine is, tables in documents."""
import os
import platform
import subprocess

TOP = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def run(*command):
    """Runs a command at the top of the source tree, quietly: what it says is shown only if it fails."""
    done = subprocess.run(command, cwd=TOP, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, check=False)
    if done.returncode != 0:
        raise SystemExit("%s%s failed" % (done.stdout, " ".join(command)))


def prepare(packages="bench", preset="release", folder=None, target="bench/all", tests=False):
    """Installs what is missing and builds the programs as the library is delivered; the folder of the build."""
    folder = folder or os.path.join(TOP, "build", "bench")
    run("tools/setup", packages)
    # Configured each time, since an engine may have been installed since.
    run("cmake", "--preset", preset, "--log-level=WARNING", "-B", folder, "-D", "ORVUQL_BUILD_BENCHMARKS=ON",
        "-D", "ORVUQL_BUILD_TOOLS=OFF", "-D", "ORVUQL_BUILD_TESTS=" + ("ON" if tests else "OFF"),
        "-D", "ORVUQL_BUILD_EXAMPLES=OFF")
    run("cmake", "--build", folder, "--target", target, "--", "--quiet")
    return folder


def machine():
    model = platform.processor()
    try:
        with open("/proc/cpuinfo", encoding="utf-8") as file:
            model = next(line.split(":", 1)[1].strip() for line in file if line.startswith("model name"))
    except (OSError, StopIteration):
        pass
    return "%s, %s %s" % (model or "unknown processor", platform.system(), platform.machine())


def number(figure):
    if figure is None:
        return ""
    return "%.1f" % figure if figure < 100 else "%.0f" % figure


def replace_part(document, name, text):
    """Puts a text between the two comments that mark its place in a Markdown file below the top folder."""
    path = os.path.join(TOP, document)
    with open(path, encoding="utf-8") as file:
        before, begin, rest = file.read().partition("<!-- %s: begin -->\n" % name)
    _, end, after = rest.partition("<!-- %s: end -->\n" % name)
    if not begin or not end:
        raise SystemExit("%s has no place that is marked %s" % (document, name))
    with open(path, "w", encoding="utf-8") as file:
        file.write(before + begin + "\n" + text.strip("\n") + "\n\n" + end + after)
