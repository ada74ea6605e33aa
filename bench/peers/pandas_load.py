"""pandas reading a table: every column as a category, and as the numbers and texts that it takes them for.

usage: pandas_load.py categories|columns TABLE
"""

import sys

import phase

categories = sys.argv[1] == "categories"
figures, data = phase.measure("load", lambda: phase.read(sys.argv[2], **({"dtype": "category"} if categories else {})))
phase.report(figures)
