#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Looks around in the page of "graph --html" with a browser, as a user does: types and clicks.

usage: object_page.py CHROMIUM ORVHOST ROOT [SCREENSHOT...]

Chromium is driven by its DevTools protocol, over pipes. SCREENSHOT, if it is given, is a PNG file to
write, followed by the page to be shown instead of the test's own.
"""

import base64
import json
import os
import pathlib
import subprocess
import sys
import tempfile

ROOT = "ManagedElement=Harbour"
EQUIPMENT = ROOT + ",Equipment=1"
CROWDED = EQUIPMENT + ",AntennaUnit=3"   # many objects below
QUOTED = 'say "hi" to C:\\temp'
GREATEST = "18446744073709551615"   # a browser would round it
ODD = "a<b>&\"'</script><script>document.title='broken'</script>"


class Browser:
    """One page in a browser of its own, which reaches no network."""

    def __init__(self, program, folder):
        self.ends = os.pipe(), os.pipe()
        (commands, self.out), (self.answers, back) = self.ends

        def give_pipes():
            # The numbers that the browser expects; first out of the way of each other.
            first, second = os.dup(commands), os.dup(back)
            os.dup2(first, 3)
            os.dup2(second, 4)

        self.log = open(pathlib.Path(folder) / "browser.log", "w+b")
        self.process = subprocess.Popen(
            [program, "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
             "--no-first-run", "--disable-background-networking", "--disable-component-update",
             "--host-resolver-rules=MAP * ~NOTFOUND", "--window-size=1280,800",
             f"--user-data-dir={folder}/profile", "--remote-debugging-pipe", "about:blank"],
            preexec_fn=give_pipes, close_fds=False, stdin=subprocess.DEVNULL,
            stdout=self.log, stderr=self.log)
        os.close(commands)
        os.close(back)
        self.number, self.rest, self.requests, self.session = 0, b"", [], None
        target = next(target for target in self.call("Target.getTargets")["targetInfos"]
                      if target["type"] == "page")
        self.session = self.call("Target.attachToTarget", targetId=target["targetId"],
                                 flatten=True)["sessionId"]
        self.call("Page.enable")
        self.call("Network.enable")

    def receive(self):
        while b"\0" not in self.rest:
            block = os.read(self.answers, 1 << 20)
            if not block:
                self.log.seek(0)
                raise RuntimeError("the browser has ended: " + self.log.read().decode())
            self.rest += block
        text, self.rest = self.rest.split(b"\0", 1)
        message = json.loads(text)
        if message.get("method") == "Network.requestWillBeSent":
            self.requests.append(message["params"]["request"]["url"])
        return message

    def call(self, method, **arguments):
        self.number += 1
        message = {"id": self.number, "method": method, "params": arguments}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.out, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.receive()
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]

    def open(self, page):
        self.call("Page.navigate", url=pathlib.Path(page).resolve().as_uri())
        while self.receive().get("method") != "Page.loadEventFired":
            pass

    def value(self, expression):
        result = self.call("Runtime.evaluate", expression=expression, returnByValue=True)
        if "exceptionDetails" in result:
            raise RuntimeError(f"{expression}: {result['exceptionDetails']}")
        return result["result"].get("value")

    def click(self, expression):
        """Clicks in the middle of the element."""
        x, y = self.value(f"""(() => {{ const at = {expression}; at.scrollIntoView({{block: "center"}});
            const box = at.getBoundingClientRect();
            return [box.x + box.width / 2, box.y + box.height / 2]; }})()""")
        for kind in "mousePressed", "mouseReleased":
            self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)

    def search(self, text):
        self.click("document.getElementById('search')")
        self.value("document.getElementById('search').select()")
        self.call("Input.insertText", text=text)

    def screenshot(self, file):
        pathlib.Path(file).write_bytes(
            base64.b64decode(self.call("Page.captureScreenshot")["data"]))

    def close(self):
        self.call("Browser.close")
        self.process.wait(timeout=20)


def tree_texts(browser):
    return browser.value("[...document.querySelectorAll('#tree [data-dn]')].map(b => b.dataset.dn)")


def part(browser, selector):
    return browser.value(f"document.querySelector({json.dumps(selector)}).innerText")


def by_dn(dn, place="#tree"):
    return (f"[...document.querySelectorAll('{place} button')].find("
            f"b => b.dataset.dn === {json.dumps(dn)} || b.textContent === {json.dumps(dn)})")


def expect(what, fact):
    if not fact:
        raise AssertionError(what)


def escaped(text):
    return "".join("\\" + c for c in text)


def make_pages(orvhost, root, page, part_page):
    """The example network with some more, with odd texts and a violation. First a page of a part of
    it, without these."""
    data = json.loads((root / "examples/data/harbour.json").read_text())
    element = data["ran-element:ManagedElement"][0]
    element["uptime"] = GREATEST
    element["ran-equipment:Equipment"][0]["AntennaUnit"].append(
        {"antennaUnitId": "3", "Antenna": [{"antennaId": str(n)} for n in range(1, 451)]})
    network = page.with_suffix(".json")
    network.write_text(json.dumps(data))
    subprocess.run(
        [orvhost, "--project", "", "-I", root / "examples/models", "-m", "ran-element",
         "-m", "ran-equipment", "-m", "ran-function", "-d", network,
         "--me-id", "Harbour", "-c", f"graph {EQUIPMENT},AntennaUnit=1 --html -o {part_page}",
         "-c", "begin", "-c", f"set {EQUIPMENT},RadioUnit=1 userLabel=" + escaped(ODD),
         "-c", f"set {EQUIPMENT},RadioUnit=2 userLabel=" + escaped(QUOTED),
         "-c", f"set {EQUIPMENT},RadioUnit=1 antennaRef={EQUIPMENT},AntennaUnit=9,Antenna=1",
         "-c", f"graph --html -o {page}"], check=True, stdout=subprocess.DEVNULL)


def test(browser, page):
    equipment = EQUIPMENT
    unit = equipment + ",RadioUnit=1"
    browser.open(page)
    expect("the title", browser.value("document.title") == ROOT)
    expect("at first the top level and its children are shown",
           equipment in tree_texts(browser) and unit not in tree_texts(browser))

    fold = by_dn(equipment) + ".previousElementSibling"
    browser.click(fold)
    expect("unfolded", unit in tree_texts(browser))
    browser.click(fold)
    expect("folded", unit not in tree_texts(browser) and equipment in tree_texts(browser))

    browser.search("RadioUnit=1")
    expect("found by name", unit in tree_texts(browser) and equipment not in tree_texts(browser))
    browser.search("document.title=")
    expect("found by value", tree_texts(browser) == [unit])
    browser.search(QUOTED)
    expect("quotes and backslashes are found", tree_texts(browser) == [equipment + ",RadioUnit=2"])
    browser.search("nothing has this")
    expect("not found", tree_texts(browser) == [] and "0 found" in part(browser, "#tree"))

    browser.search("document.title=")
    browser.click(by_dn(unit))
    shown = part(browser, "#object")
    expect("the DN", shown.startswith(unit))
    expect("an odd text is shown as it is: " + shown, ODD in shown)
    expect("its script did not run", browser.value("document.title") == ROOT
           and browser.value("document.scripts.length") == 2)
    expect("a reference to nothing: " + shown, "AntennaUnit=9,Antenna=1 (is not there)" in shown)
    expect("its violation", "does not exist" in part(browser, "#object .violation"))
    expect("the violation is red", browser.value(
        "getComputedStyle(document.querySelector('#object .violation')).color")
        == "rgb(208, 0, 0)")

    browser.search(GREATEST)
    browser.click(by_dn("ManagedElement=Harbour"))
    shown = part(browser, "#object")
    expect("a great number is shown to the last digit: " + shown, GREATEST in shown)

    # Both ways: from an object to what it names, and back.
    browser.search("")
    browser.value("choose(objects.findIndex(o => o.links.some(l => byDn.has(l[1]))))")
    start = part(browser, "#object h1")
    browser.click("document.querySelector('#object .link')")
    end = part(browser, "#object h1")
    expect("a reference is followed", end != start)
    expect("it is named there", start in part(browser, "#object").split("Referred to by")[1])
    back = ("[...document.querySelectorAll('#object table:last-of-type .link')]"
            f".find(b => b.textContent === {json.dumps(start)})")
    browser.click(back)
    expect("and back", part(browser, "#object h1") == start)

    wrong = "document.getElementById('wrong')"
    wrong_objects = browser.value("objects.map(o => o.dn).filter(dn => problems.has(dn))")
    expect(f"some are wrong: {wrong_objects}", unit in wrong_objects)
    expect("before, others are shown", tree_texts(browser) != wrong_objects)
    browser.click(wrong)
    expect("violations only", tree_texts(browser) == wrong_objects)
    expect("how many, at how many objects", part(browser, "#tree").startswith(
        f"{browser.value('data.violations.length')} violations, at {len(wrong_objects)} objects"))
    browser.click(by_dn(unit))
    expect("the violations stay", tree_texts(browser) == wrong_objects)
    browser.click(wrong)
    expect("the tree again", CROWDED in tree_texts(browser))
    browser.click(wrong)
    browser.search("RadioUnit=2")
    expect("a search ends the list", equipment + ",RadioUnit=2" in tree_texts(browser))

    # More entries than a list shows at once.
    browser.search("")
    many = [f"{CROWDED},Antenna={number}" for number in range(1, 451)]
    more = "[...document.querySelectorAll('#tree .link')].find(b => / more$/.test(b.textContent))"
    browser.click(by_dn(CROWDED) + ".previousElementSibling")
    listed = [dn for dn in tree_texts(browser) if dn in many]
    order = browser.value(f"children[byDn.get('{CROWDED}')].map(index => objects[index].dn)")
    expect("all are there", sorted(order) == sorted(many))
    expect("only the first", listed == order[:200])
    browser.click(more)
    browser.click(by_dn(order[300]))
    expect("chosen", part(browser, "#object h1") == order[300])
    listed = [dn for dn in tree_texts(browser) if dn in many]
    expect("the chosen one is still shown", listed == order[:200] + order[300:])
    expect("and marked", browser.value("document.querySelector('#tree .chosen').dataset.dn")
           == order[300])
    browser.click(more)
    listed = [dn for dn in tree_texts(browser) if dn in many]
    expect("those between come where they belong", listed == order)
    expect(f"nothing else is loaded: {browser.requests}",
           browser.requests == [pathlib.Path(page).resolve().as_uri()])


def test_part(browser, page):
    unit = EQUIPMENT + ",RadioUnit=1"
    browser.open(page)
    browser.click(by_dn(unit))
    shown = part(browser, "#object")
    expect("nothing is claimed of what was not read: " + shown,
           EQUIPMENT + ",Sector=1 (not on this page)" in shown)
    expect("nothing is missing: " + shown, "is not there" not in shown)


def main():
    chromium, orvhost, root = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
        browser = Browser(chromium, folder)
        try:
            if len(sys.argv) > 4:
                browser.open(sys.argv[5])
                browser.screenshot(sys.argv[4])
            else:
                page = pathlib.Path(folder) / "page.html"
                part_page = pathlib.Path(folder) / "part.html"
                make_pages(orvhost, root, page, part_page)
                test(browser, page)
                test_part(browser, part_page)
        finally:
            browser.close()


main()
