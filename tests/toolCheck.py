"""What the scripts share that use the tools: each failure is told with the line of its check, and counted."""
import sys

failures = 0


def check(condition, what, depth=1):
    """`depth`: how many functions lie between this one and the line to name, this one included."""
    global failures
    if not condition:
        failures += 1
        print("FAILED, line %d: %s" % (sys._getframe(depth).f_lineno, what))


def finish():
    sys.exit(failures != 0)
