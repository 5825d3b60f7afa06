# SPDX-License-Identifier: Apache-2.0
"""What the browser tests need: a sandbox, shops that pay at it, a raw client, and a browser."""
import http.client
import json
import pathlib
import shutil
import socket
import ssl
import subprocess
import tempfile
import threading
import urllib.parse

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support.ui import WebDriverWait

PATIENCE_SECONDS = 30


class Sandbox:
    """orlix-sandbox in a process of its own."""

    def __init__(self, build, *options):
        self.build = build
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="orlix-console-"))
        self.process = subprocess.Popen(
            [build / "sandbox" / "orlix-sandbox", "--dir", self.folder, *options],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        ready = json.loads(self.process.stdout.readline())
        self.base, self.anchor, self.console = ready["base"], ready["anchor"], ready["console"]
        threading.Thread(target=lambda: [None for _ in self.process.stdout], daemon=True).start()
        self.trust = ssl.create_default_context(cafile=self.folder / "certificateroot.pem")
        self.shops = 0

    def client(self):
        address = urllib.parse.urlparse(self.base)
        return http.client.HTTPSConnection(address.hostname, address.port, context=self.trust)

    def ask(self, method, path, body=None, headers=None, client=None):
        client = client or self.client()
        client.request(method, path, json.dumps(body or {}),
                       {"Content-Type": "application/json", **(headers or {})})
        answer = client.getresponse()
        return answer.status, json.loads(answer.read() or b"{}")

    def control(self, method, path, body=None):
        return self.ask(method, f"/control/{path}", body)[1]

    def shop(self, *lines):
        """A shop with a store of its own that runs these lines."""
        self.shops += 1
        return Shop(self, self.folder / f"state{self.shops}", lines)

    def stop(self):
        self.process.terminate()
        self.process.wait(timeout=20)
        shutil.rmtree(self.folder, ignore_errors=True)


class Shop:
    def __init__(self, sandbox, state, lines):
        script = state.with_suffix(".shop")
        script.write_text("\n".join(lines) + "\n", encoding="utf-8")
        self.process = subprocess.Popen(
            [sandbox.build / "examples" / "shop" / "orlix-shop", "--headless", "--server",
             sandbox.base, "--anchor", sandbox.anchor, "--state", state, "--script", script],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def events(self):
        """Its event lines once it has ended; fails when a line of its script did."""
        out, log = self.process.communicate(timeout=120)
        if self.process.returncode != 0:
            raise AssertionError(f"the shop ended with {self.process.returncode}:\n{log[-2000:]}")
        return [json.loads(line) for line in out.splitlines()]


PAYS = ("type pinField 1234", "tap proceedAction",
        "wait outcome orlixPaymentSucceededWithTransactionReference")


class Cable:
    """A connection between the browser and a server that can be cut."""

    def __init__(self, address):
        self.server = urllib.parse.urlparse(address)
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.ends, self.whole = [], True
        threading.Thread(target=self._accept, daemon=True).start()

    def rule(self):
        """The argument by which a browser takes this way while it asks for the server's address."""
        return (f"--host-resolver-rules=MAP {self.server.netloc} "
                f"127.0.0.1:{self.listener.getsockname()[1]}")

    def _accept(self):
        while True:
            try:
                near = self.listener.accept()[0]
            except OSError:
                return
            if not self.whole:
                near.close()
                continue
            far = socket.create_connection((self.server.hostname, self.server.port))
            self.ends += [near, far]
            for one, other in ((near, far), (far, near)):
                threading.Thread(target=self._carry, args=(one, other), daemon=True).start()

    @staticmethod
    def _carry(one, other):
        try:
            while data := one.recv(65536):
                other.sendall(data)
            other.shutdown(socket.SHUT_WR)
        except OSError:
            pass

    def cut(self):
        self.whole = False
        for end in self.ends:
            try:
                end.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass
        self.ends.clear()

    def mend(self):
        self.whole = True

    def close(self):
        self.cut()
        self.listener.close()


class Browser:
    """Headless Chromium with one page."""

    def __init__(self, width=1280, height=860, scheme="light", more=()):
        options = webdriver.ChromeOptions()
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu",
                         "--disable-dev-shm-usage", f"--window-size={width},{height}", *more):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver"))
        self.size(width, height, scheme)

    def size(self, width, height, scheme="light"):
        command = self.driver.execute_cdp_cmd
        command("Emulation.setDeviceMetricsOverride",
                {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False})
        command("Emulation.setEmulatedMedia",
                {"features": [{"name": "prefers-color-scheme", "value": scheme}]})

    def open(self, address):
        self.driver.get(address)
        self.until(lambda: self.text("connection") == "Live", "the page is live")

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def find(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def text(self, identifier):
        return self.run("return document.getElementById(arguments[0])?.textContent", identifier)

    def texts(self, selector):
        return self.run("return [...document.querySelectorAll(arguments[0])].map(e => e.innerText)",
                        selector)

    def rows(self):
        return self.texts("#space .row:not([hidden])")

    def until(self, true, what, seconds=PATIENCE_SECONDS):
        WebDriverWait(self.driver, seconds, poll_frequency=0.05).until(lambda _: true(), what)

    def click(self, selector, containing=""):
        """The first shown element that matches and holds the text. A list that is drawn again
        meanwhile gives a new element, so the search is the page's own."""
        self.until(lambda: self.run(
            "const found = [...document.querySelectorAll(arguments[0])].find("
            "e => e.offsetParent && e.innerText.includes(arguments[1]));"
            "if (!found) return false; found.scrollIntoView({block: 'center'}); found.click();"
            "return true", selector, containing), f"{selector} {containing} can be pressed")

    def view(self, name):
        self.click(f"#tab-{name}")

    def type(self, selector, text):
        field = self.find(selector)[0]
        field.clear()
        field.send_keys(text)

    def choose(self, selector, value):
        self.run("const field = document.querySelector(arguments[0]); field.value = arguments[1];"
                 "field.dispatchEvent(new Event('change', {bubbles: true}))", selector, value)

    def key(self, *keys):
        self.driver.switch_to.active_element.send_keys(*keys)

    def complaints(self):
        """What the browser's own log says against the page."""
        return [entry["message"] for entry in self.driver.get_log("browser")
                if "ERR_" not in entry["message"] and "status of 400" not in entry["message"]]

    def save(self, file):
        self.driver.save_screenshot(str(file))

    def quit(self):
        self.driver.quit()
