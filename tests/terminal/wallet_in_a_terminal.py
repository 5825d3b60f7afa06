#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Works orlix-terminal through a pseudo-terminal, as a person at a terminal does, against orlix-sandbox.

usage: wallet_in_a_terminal.py ORLIX_TERMINAL ORLIX_SANDBOX

Enrols a device by SMS, adds cards, validates one, removes one, pays by PIN and by CVV, and meets a card
that needs an issuer's page. Fails with the screen that it saw instead of the expected one.
"""
import json
import os
import pathlib
import pty
import queue
import re
import select
import subprocess
import sys
import tempfile
import threading
import time

PATIENCE_SECONDS = 30


class Sandbox:
    def __init__(self, program, folder):
        self.sms = queue.Queue()
        self.process = subprocess.Popen([program, "--dir", folder], stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, text=True)
        ready = json.loads(self.process.stdout.readline())
        self.base, self.anchor = ready["base"], ready["anchor"]
        threading.Thread(target=self._listen, daemon=True).start()

    def _listen(self):
        for line in self.process.stdout:
            event = json.loads(line)
            if event["event"] == "sms":
                self.sms.put(event["code"])


class Terminal:
    """One run of the program. `shown` is all that the terminal has shown."""

    def __init__(self, *command):
        pid, self.terminal = pty.fork()
        if pid == 0:
            os.execv(command[0], [str(word) for word in command])
        self.pid, self.shown, self.read_up_to = pid, "", 0

    def until(self, pattern):
        """Waits for the pattern behind what was waited for before; returns the match."""
        end = time.monotonic() + PATIENCE_SECONDS
        while True:
            found = re.compile(pattern, re.S).search(self.shown, self.read_up_to)
            if found:
                self.read_up_to = found.end()
                return found
            if time.monotonic() > end or not self._more(0.2):
                sys.exit(f"no \"{pattern}\" was shown, but:\n{self.shown[self.read_up_to:]}")

    def _more(self, seconds):
        """False at the program's end."""
        if not select.select([self.terminal], [], [], seconds)[0]:
            return True
        try:
            piece = os.read(self.terminal, 65536)
        except OSError:
            piece = b""
        self.shown += piece.decode(errors="replace")
        return bool(piece)

    def write(self, line):
        os.write(self.terminal, (line + "\n").encode())

    def choose(self, screen, choice):
        """Takes the choice whose text begins so, from the first menu that offers it. Answers again when
        the screen changes meanwhile: what was typed for the former one does not count."""
        while True:
            menu = self.until(rf"--- {re.escape(screen)}\r?\n(.*?)Number\? ").group(1)
            number = re.search(rf"^ *(\d+)  {re.escape(choice)}", menu, re.M | re.I)
            if not number:
                continue  # the screen is shown again when an answer has come
            self.write(number.group(1))
            before = self.read_up_to
            if self.until(r"\n(> |--- )").group(1) == "> ":
                return
            self.read_up_to = before

    def fill(self, screen, field, text):
        self.choose(screen, field)
        self.until(r"\? ")
        self.write(text)

    def end(self):
        while self._more(1):
            pass
        return os.waitstatus_to_exitcode(os.waitpid(self.pid, 0)[1])


def add_card(terminal, number):
    for field, text in (("card number", number), ("name on card", "A Customer"), ("MM/YY", "1299")):
        terminal.fill("AddCard", field, text)
    terminal.choose("AddCard", "proceed")


def change_to_new_card(shop, number):
    shop.choose("Product", "card")
    shop.choose("Cards", "add card")
    add_card(shop, number)
    shop.choose("Product", "card")
    shop.choose("Cards", f"xxx-{number[-4:]}")


def pay(shop, field):
    shop.fill("Product", field, "1234")
    shop.choose("Product", "proceed")
    shop.until(r"Paid. Reference \d+")
    return shop.end() == 0


def expect(holds, what):
    if not holds:
        sys.exit(f"expected: {what}")
    print(f"ok: {what}", flush=True)


def enrol(run, sandbox):
    shop = run("register", "0821234567")
    shop.choose("Activation", "proceed")
    shop.fill("ActivationCode", "activation code", "000")
    shop.choose("ActivationCode", "proceed")
    shop.choose("Warning", "Ok")  # a wrong code
    shop.fill("ActivationCode", "activation code", sandbox.sms.get(timeout=PATIENCE_SECONDS))
    shop.choose("ActivationCode", "proceed")
    add_card(shop, "4000001000001111")
    expect("Registered." in shop.until("Registered.").group() and shop.end() == 0,
           "a device is enrolled by SMS and a card added")


def pay_by_pin(run):
    shop = run("pay", "FIXED-25")
    expect(pay(shop, "ATM PIN") and "1234" not in shop.shown, "paid by PIN, which the terminal never showed")


def pay_by_cvv(run):
    shop = run("pay", "OPEN", "12.50")
    change_to_new_card(shop, "3700003000003333")
    expect(pay(shop, "cvv"), "a second card added, and paid by CVV")


def validate(run):
    shop = run("pay", "FIXED-25")
    change_to_new_card(shop, "4200001000000201")
    shop.choose("Product", "proceed: UNLOCK")
    shop.fill("CardValidation", "DD/MM/YYYY", "31121990")
    shop.choose("CardValidation", "proceed")
    expect(pay(shop, "ATM PIN"), "a card validated by its owner's date of birth, and paid with")


def remove(run):
    wallet = run("wallet")
    wallet.choose("WalletManagement", "card")
    wallet.choose("Cards", "remove xxx-0201")
    wallet.choose("Delete Card", "Delete")
    wallet.choose("WalletManagement", "done clicked")
    wallet.until("Wallet closed.")
    expect(wallet.end() == 0 and wallet.shown.count("xxx-0201") > 0, "a card removed in the wallet")
    again = run("wallet")
    again.choose("WalletManagement", "card")
    menu = again.until(r"--- Cards\r?\n(.*?)Number\? ").group(1)
    expect("xxx-0201" not in menu and "xxx-3333" in menu, "it is gone, the others are there")
    os.close(again.terminal)


def meet_issuers_page(run):
    shop = run("pay", "FIXED-25")
    change_to_new_card(shop, "4300001000000301")
    shop.choose("Product", "proceed")
    said = shop.until(r"--- [^\n]*\n(.*?)Number\? ").group(0)
    expect("web view" in said or "issuer" in said, f"says what becomes of the issuer's page: {' '.join(said.split())}")
    os.close(shop.terminal)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with tempfile.TemporaryDirectory() as work:
        sandbox = Sandbox(sys.argv[2], pathlib.Path(work) / "server")

        def run(*words):
            return Terminal(sys.argv[1], sandbox.base, sandbox.anchor, f"{work}/state", *words)

        try:
            enrol(run, sandbox)
            pay_by_pin(run)
            pay_by_cvv(run)
            validate(run)
            remove(run)
            meet_issuers_page(run)
        finally:
            sandbox.process.terminate()
            sandbox.process.wait()


main()
