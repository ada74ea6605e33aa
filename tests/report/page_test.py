"""Opens pages of arbor report in headless Chromium.

usage: page_test.py ARBOR DATA
"""

import contextlib
import csv
import json
import pathlib
import subprocess
import sys
import tempfile
import time

from browser import Browser

ARBOR, DATA = sys.argv[1], pathlib.Path(sys.argv[2])
HOSTILE = ["</script><script>window.__hit=1;alert(1)</script>", "<img src=x onerror='window.__hit=2'>",
           "<!--<script>", "\"quotes' & &lt;b&gt;", "line\u2028feed", "right\u202eto left", "tab\there", "n" * 3000,
           "\u05e9\u05dc\u05d5\u05dd", "#node-0", "javascript:window.__hit=3", "${window.__hit=4}"]  # a table has no NUL


def check(truth, *said):
    if not truth:
        raise AssertionError(" ".join(map(str, said)))


def arbor(*arguments):
    return subprocess.run([ARBOR, *map(str, arguments)], check=True, capture_output=True, text=True).stdout


def shown(text):
    """A text as reports show it: nothing in it turns the direction of writing or ends a line."""
    for character in "\u2028\u202e\t":
        text = text.replace(character, "\\t" if character == "\t" else f"\\u{ord(character):04X}")
    return text


class Page:
    """A page of the tree grown on a table, with the table evaluated."""

    def __init__(self, folder, browser, name, rows=None, grow=()):
        table = DATA / f"{name}.csv"
        if rows:
            table = folder / f"{name}.csv"
            with open(table, "w", newline="", encoding="utf-8") as file:
                csv.writer(file).writerows(rows)
        self.table, self.browser = table, browser
        self.model, self.path = folder / f"{name}.model", folder / f"{name}.html"
        arbor("grow", table, "--model", self.model, *grow)
        arbor("report", self.model, table, "--output", self.path)
        self.tree = json.loads(arbor("show", self.model, "--format", "json"))
        long_texts = self.tree.get("long_texts", [])
        for node in self.tree["nodes"]:
            for key in ("class", "attribute", "branch"):
                if isinstance(node.get(key), int):
                    node[key] = long_texts[node[key]]

    def open(self, fragment=""):
        self.browser.open(self.path, fragment)
        return self

    def rule(self, node):
        conditions = []
        while "parent" in self.tree["nodes"][node]:
            here = self.tree["nodes"][node]
            node = here["parent"]
            test = self.tree["nodes"][node]
            value = f"{here['branch']} {test['threshold']}" if "threshold" in test else f"= {here['branch']}"
            conditions.insert(0, shown(f"{test['attribute']} {value}"))
        return " and ".join(conditions)

    def check_quiet(self):
        console, asked = self.browser.logs()
        check(not console, self.path, "said", console)
        check(all(url.startswith((f"file://{self.path}", "about:")) for url in asked), "asked for", asked)
        check(self.browser.run("return window.__hit === undefined && !document.querySelector('main script, main img')"),
              "something of the table was run")

    def check_rules(self):
        leaves = [i for i, node in enumerate(self.tree["nodes"]) if "children" not in node]
        for leaf in leaves[:: max(1, len(leaves) // 8)]:
            self.browser.run("location.hash = '#node-' + arguments[0]", leaf)
            wait_for(self.browser, f"document.querySelector('.kind a').textContent === '#node-{leaf}'")
            said = self.browser.run("return [document.getElementById('rule').textContent, document.querySelector('.card.selected').dataset.node]")
            want = self.rule(leaf)
            if len(want) < 1000:  # the page shortens names of thousands of letters
                check(said[0] == want, said[0], "is not", want)
            check(said[1] == str(leaf), "another node is selected:", said[1])

    def check_confusion(self):
        rows = list(csv.DictReader(arbor("classify", self.model, self.table).splitlines()))
        counts = {}
        for row in rows:
            pair = (row[self.tree["class"]], row["predicted"])
            counts[pair] = counts.get(pair, 0) + 1
        said = self.browser.run("""
            const rows = [...document.querySelectorAll('#confusion tr')].map(
              (row) => [...row.children].map((cell) => cell.textContent));
            return rows;""")
        names = said[0][1:]
        check([row[0] for row in said[1:]] == names, "rows and columns differ")
        for row in said[1:]:
            for name, cell in zip(names, row[1:]):
                check(float(cell.replace(",", "")) == counts.get((row[0], name), 0), row[0], name, cell)
        right = sum(n for (actual, predicted), n in counts.items() if actual == predicted)
        accuracy = self.browser.run("return document.querySelector('#quality-figures dd').firstChild.data")
        check(accuracy == f"{100 * right / len(rows):.2f}%", accuracy)
        for name, actual, predicted, precision, recall, _ in self.browser.run("""
                return [...document.querySelectorAll('#per-class tbody tr')].map(
                  (row) => [...row.children].map((cell) => cell.textContent.trim()));"""):
            hits = counts.get((name, name), 0)
            sums = [sum(n for pair, n in counts.items() if pair[side] == name) for side in (0, 1)]
            shown = [f"{hits / total:.3f}" if total else "\u2013" for total in (sums[1], sums[0])]
            check([actual, predicted, precision, recall] == [*(f"{total:,}" for total in sums), *shown],
                  name, actual, predicted, precision, recall, "is not", sums, shown)


def check_policy(browser):
    """Whatever came into the page, it could not run, nor load or send anything."""
    browser.run("""
        const script = document.createElement('script');
        script.textContent = 'window.__hit = 1';
        document.body.append(script);
        document.body.insertAdjacentHTML('beforeend', '<img src=x onerror="window.__hit=2"><style>body{color:red}</style>');
        fetch('http://127.0.0.1:9/').catch(() => { window.refused = true; });""")
    wait_for(browser, "window.refused")
    check(browser.run("return window.__hit === undefined && getComputedStyle(document.body).color !== 'rgb(255, 0, 0)'"),
          "the content security policy does not hold")


def wait_for(browser, condition):
    deadline = time.monotonic() + 20
    while not browser.run(f"return {condition}"):
        check(time.monotonic() < deadline, "in vain waited for", condition)


def active(browser):
    return browser.run("""const card = document.activeElement;
        return [Number(card.dataset.node), card.getAttribute('aria-expanded'), card.getAttribute('aria-level')]""")


def check_looks(page):
    """Numbers in the matrix have enough contrast in both colours, and a phone shows two columns whole."""
    browser = page.browser
    for colours in ("light", "dark"):
        browser.command("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": colours}])
        least = browser.run("""
            const light = (colour) => {  // "rgb(0, 114, 178)" or "color(srgb 0 0.45 0.7)"
              const most = colour.startsWith('rgb') ? 255 : 1;
              const [r, g, b] = colour.replace('srgb', '').match(/[\\d.]+/g).map((part) => part / most)
                .map((part) => part <= 0.04 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4);
              return 0.2126 * r + 0.7152 * g + 0.0722 * b + 0.05;
            };
            return Math.min(...[...document.querySelectorAll('#confusion td:not(.none)')].map((cell) => {
              const style = getComputedStyle(cell);
              const pair = [light(style.color), light(style.backgroundColor)];
              return Math.max(...pair) / Math.min(...pair);
            }));""")
        check(least >= 4.5, "a number in the matrix has a contrast of", least, "in", colours)
    browser.command("Emulation.setDeviceMetricsOverride", width=360, height=740, deviceScaleFactor=1, mobile=True)
    page.open()
    said = browser.run("""
        const right = document.getElementById('picture').getBoundingClientRect().right;
        return [[...document.querySelectorAll('.card[aria-level="2"] .handle')].every(
          (handle) => handle.getBoundingClientRect().right <= right), document.documentElement.scrollWidth];""")
    check(said == [True, 360], "a phone cuts handles off, or the page is wider than it:", said)
    browser.command("Emulation.clearDeviceMetricsOverride")


def check_keys(page):
    """The golf tree: 0 outlook, 1 overcast, 2 rainy, 3 sunny, 4 to 7 their leaves."""
    browser = page.open().browser
    browser.run("document.getElementById('fold').click(); document.querySelector('.card').focus()")
    for key, expected in [("Right", [0, "true", "1"]), ("Right", [1, None, "2"]), ("Down", [2, "false", "2"]),
                          ("Enter", [2, "true", "2"]), (" ", [2, "false", "2"]), ("Right", [2, "true", "2"]),
                          ("Right", [4, None, "3"]), ("Left", [2, "true", "2"]), ("Left", [2, "false", "2"]),
                          ("End", [3, "false", "2"]), ("*", [3, "true", "2"]), ("Up", [5, None, "3"]), ("Home", [0, "true", "1"])]:
        browser.press(key)
        check(active(browser) == expected, "after", key, active(browser), "in place of", expected)
    visible = "return [...document.querySelectorAll('[role=tree] > [role=treeitem]')].map((card) => Number(card.dataset.node))"
    check(browser.run(visible) == [0, 1, 2, 4, 5, 3, 6, 7], browser.run(visible))
    browser.click(".card[data-node='3'] .handle")
    check(browser.run(visible) == [0, 1, 2, 4, 5, 3], "the handle does not fold")
    browser.click("#fold")
    browser.run("document.getElementById('search').focus()")
    browser.press(*"humidity <= 75", "Enter")
    check(browser.run("return document.getElementById('found').textContent") == "1 of 1", "the search has not found it")
    check(browser.run(visible) == [0, 1, 2, 3, 6, 7] and page.rule(6) == "outlook = sunny and humidity <= 75" ==
          browser.run("return document.getElementById('rule').textContent"), "the search does not open the path")


def many_rows():
    """Every value of the attribute has a leaf of its own: a tree of 10,000 nodes."""
    yield "a", "c"
    for i in range(5200):
        for _ in range(2):
            yield str(i), f"class {i * 7919 % 900}"


def check_large(page):
    browser = page.open().browser
    nodes = len(page.tree["nodes"])
    check(nodes > 10000, "only", nodes, "nodes")
    unfolding = browser.run("""const begin = performance.now(); document.getElementById('unfold').click();
        document.body.getBoundingClientRect(); return performance.now() - begin""")
    browser.run("location.hash = '#node-' + arguments[0]", nodes // 2)
    wait_for(browser, f"document.querySelector('.kind a').textContent === '#node-{nodes // 2}'")
    drawn, frames = browser.run_async("""
        const done = arguments[0];
        const picture = document.getElementById('picture');
        const times = [];
        let drawn = 0;
        let last = performance.now();
        const step = (now) => {
          times.push(now - last);
          last = now;
          const i = times.length;
          drawn = Math.max(drawn, document.querySelectorAll('.card').length);
          picture.dispatchEvent(new WheelEvent('wheel', i % 8 === 0
            ? {deltaY: i < 40 ? 150 : -100, ctrlKey: true, cancelable: true, clientX: 300, clientY: 500}
            : {deltaY: 120, cancelable: true}));
          if (i < 60) requestAnimationFrame(step);
          else done([drawn, times.slice(1).sort((a, b) => a - b)]);
        };
        requestAnimationFrame(step);""")
    print(f"{nodes} nodes: unfolded in {unfolding:.0f} ms, at most {drawn} of them drawn; frames while moving: "
          f"median {frames[len(frames) // 2]:.0f} ms, slowest {frames[-1]:.0f} ms")
    check(drawn < 1500, drawn, "nodes are drawn at once")
    check(unfolding < 5000 and frames[len(frames) // 2] < 500, "not fluid")


def main():
    with tempfile.TemporaryDirectory() as name, contextlib.ExitStack() as stack:
        folder = pathlib.Path(name)
        browser = stack.enter_context(Browser(folder))
        golf = Page(folder, browser, "golf")
        check_keys(golf)
        golf.check_quiet()
        for page in (Page(folder, browser, "soybean"), Page(folder, browser, "birdstrikes")):
            page.open().check_rules()
            page.check_confusion()
            check_looks(page)
            page.check_quiet()
        rows = [[HOSTILE[0], HOSTILE[1], HOSTILE[2]]]
        rows += [[a, b, HOSTILE[(i * 3 + j) % len(HOSTILE)]] for i, a in enumerate(HOSTILE)
                 for j, b in enumerate(HOSTILE) for _ in range(3)]
        hostile = Page(folder, browser, "hostile", rows, ["--no-pruning", "--min-weight", "1"])
        hostile.open().check_rules()
        browser.run("document.getElementById('unfold').click(); dispatchEvent(new Event('beforeprint'))")
        text = browser.run("return document.body.textContent")
        for name in HOSTILE:
            check(shown(name)[:30] in text, repr(name), "is not shown literally")
        check(browser.run("return document.querySelector('h1').textContent") == HOSTILE[2], "the class has another name")
        hostile.check_quiet()
        check_policy(browser)
        large = Page(folder, browser, "large", many_rows(), ["--no-pruning", "--min-weight", "1"])
        check_large(large)
        large.check_quiet()
        alone = folder / "alone.html"
        alone.write_text(arbor("report", golf.model), encoding="utf-8")
        golf.path = alone
        golf.open()
        check(browser.run("return document.getElementById('quality').hidden"), "figures without a table")
        golf.check_quiet()


if __name__ == "__main__":
    main()
