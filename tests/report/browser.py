"""A headless Chromium, driven through chromedriver's HTTP protocol (W3C WebDriver).

    with Browser(folder) as browser:
        browser.open("/tmp/page.html")
        print(browser.run("return document.title"))
"""

import base64
import json
import re
import subprocess
import urllib.request

KEYS = {"Left": "\ue012", "Up": "\ue013", "Right": "\ue014", "Down": "\ue015", "Enter": "\ue007", "End": "\ue010",
        "Home": "\ue011", "Tab": "\ue004"}


class Browser:
    def __init__(self, folder, width=1280, height=900):
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        for line in self.driver.stdout:
            port = re.search(r"started successfully on port (\d+)", line)
            if port:
                break
        else:
            raise RuntimeError("chromedriver has not started")
        self.base = f"http://127.0.0.1:{port[1]}/session"
        options = {
            "args": ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                     "--disable-background-networking", "--disable-component-update", "--disable-sync",
                     "--disable-dev-shm-usage", f"--user-data-dir={folder}/profile",
                     f"--window-size={width},{height}"],
            "perfLoggingPrefs": {"enableNetwork": True, "enablePage": False},
        }
        wanted = {"browserName": "chrome", "goog:chromeOptions": options, "unhandledPromptBehavior": "ignore",
                  "goog:loggingPrefs": {"browser": "ALL", "performance": "ALL"}}
        try:
            made = self.call("POST", "", {"capabilities": {"alwaysMatch": wanted}})
        except Exception:
            self.driver.terminate()
            raise
        self.base += "/" + made["sessionId"]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        try:
            self.call("DELETE", "")
        finally:
            self.driver.terminate()
            self.driver.wait()

    def call(self, method, path, body=None):
        request = urllib.request.Request(self.base + path, method=method, headers={"Content-Type": "application/json"},
                                         data=None if body is None else json.dumps(body).encode())
        try:
            with urllib.request.urlopen(request, timeout=120) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(json.load(error)["value"]["message"]) from None

    def open(self, path, fragment=""):
        self.call("POST", "/url", {"url": "about:blank"})
        self.logs()
        self.call("POST", "/url", {"url": f"file://{path}{fragment}"})

    def run(self, script, *arguments):
        return self.call("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def run_async(self, script, *arguments):
        return self.call("POST", "/execute/async", {"script": script, "args": list(arguments)})

    def press(self, *keys):
        actions = [{"type": kind, "value": KEYS.get(key, key)} for key in keys for kind in ("keyDown", "keyUp")]
        self.call("POST", "/actions", {"actions": [{"type": "key", "id": "keys", "actions": actions}]})

    def click(self, selector):
        found = self.call("POST", "/element", {"using": "css selector", "value": selector})
        self.call("POST", f"/element/{next(iter(found.values()))}/click", {})

    def command(self, name, **parameters):
        return self.call("POST", "/goog/cdp/execute", {"cmd": name, "params": parameters})

    def picture(self):
        return base64.b64decode(self.call("GET", "/screenshot"))

    def logs(self):
        """The messages of the console, and the URLs that were asked for, since the last call."""
        console = [entry["message"] for entry in self.call("POST", "/se/log", {"type": "browser"})]
        events = [json.loads(entry["message"])["message"] for entry in self.call("POST", "/se/log", {"type": "performance"})]
        asked = [event["params"]["request"]["url"] for event in events if event["method"] == "Network.requestWillBeSent"]
        return console, asked
