"""Usage: pictures_test.py DIRECTORY_OF_EXAMPLES FRONT_PAGE_PICTURES [unittest's arguments]"""

import os
import pathlib
import pty
import re
import subprocess
import sys
import tempfile
import unittest
import xml.dom.minidom

EXAMPLES, FRONT_PAGE = sys.argv[1:3]
del sys.argv[1:3]
GREY = (0x94, 0x94, 0x94)


def run(name, *arguments):
    return subprocess.run([f"{EXAMPLES}/{name}", *arguments], capture_output=True, text=True)


def on_terminal(name, **environment):
    """What an example writes where its output is a terminal."""
    master, slave = pty.openpty()
    settings = {key: value for key, value in os.environ.items() if key not in ("NO_COLOR", "TERM")} | environment
    with subprocess.Popen([f"{EXAMPLES}/{name}"], stdout=slave, env=settings):
        os.close(slave)
        text = b""
        try:
            while block := os.read(master, 65536):
                text += block
        except OSError:  # the other end is closed
            pass
    os.close(master)
    return text.decode()


def pictures(name):
    """The two SVG of an example, parsed."""
    with tempfile.TemporaryDirectory() as directory:
        assert run(name, "--svg", f"{directory}/p").returncode == 0
        return [xml.dom.minidom.parse(f"{directory}/p-{kind}.svg") for kind in ("outcomes", "density")]


def words(picture, tag):
    return [node.firstChild.data for node in picture.getElementsByTagName(tag) if node.firstChild]


class Pictures(unittest.TestCase):
    def test_phases_that_are_rounding_have_no_colour(self):
        colours = re.findall(r"\x1b\[38;2;(\d+);(\d+);(\d+)m#", on_terminal("bell_and_ghz", TERM="xterm"))
        colours = [tuple(map(int, colour)) for colour in colours]
        half, pair, half_of_ghz, ghz = colours[:3], colours[3:6], colours[6:8], colours[8:]
        self.assertEqual(set(half + half_of_ghz), {GREY})
        self.assertEqual(set(pair + ghz), {(0x73, 0x39, 0x57)})  # the colour of phase 0

    def test_a_terminal_is_asked_for_its_wishes(self):
        plain = run("bell_and_ghz").stdout
        for wishes in {"TERM": "dumb"}, {"TERM": "xterm", "NO_COLOR": "1"}, {}:
            self.assertEqual(on_terminal("bell_and_ghz", **wishes).replace("\r\n", "\n"), plain)
        self.assertIn("\x1b[", on_terminal("bell_and_ghz", TERM="xterm", NO_COLOR=""))

    def test_a_bar_is_full_only_at_one(self):
        search = run("grover").stdout
        self.assertRegex(search, r" 2 +1 +3  #{47}\. 0\.98")
        self.assertRegex(run("teleportation").stdout, r" 2  #{4}\.{44} 0\.102")  # 4.9 of 48
        self.assertRegex(search, r"59 others, together 0\.01\d\n")

    def test_an_svg_tells_what_it_shows(self):
        for picture in pictures("grover"):
            self.assertEqual(words(picture, "title"), ["The register after the search"])
            self.assertRegex(words(picture, "desc")[0], r"three 2, four 1, five 3: probability 0\.98\d; 59 others")
            self.assertLess(float(picture.documentElement.getAttribute("width")), 600)
            self.assertLessEqual({"three", "four", "five", "2", "1", "3", "coherence 1"}, set(words(picture, "text")))
        self.assertEqual([words(picture, "desc")[0].partition(". ")[2] for picture in pictures("entangled_pair")],
                         ["coin 0, die 0: probability 0.500; coin 1, die 1: probability 0.500."] * 2)
        outcomes, density = pictures("teleportation")
        self.assertLessEqual({"0", "0.25", "0.5", "0.75", "1"}, set(words(outcomes, "text")))
        largest = max(map(float, re.findall(r"probability (\d\.\d+)", words(outcomes, "desc")[0])))
        self.assertIn(f"{largest:.3f}", words(density, "text"))

    def test_the_front_page_has_the_picture_that_the_example_draws(self):
        with tempfile.TemporaryDirectory() as directory:
            self.assertEqual(run("entangled_pair", "--svg", f"{directory}/p").returncode, 0)
            for kind in "outcomes", "density":
                drawn = pathlib.Path(f"{directory}/p-{kind}.svg").read_text()
                self.assertEqual(drawn, pathlib.Path(f"{FRONT_PAGE}-{kind}.svg").read_text())

    def test_a_command_line_that_nobody_reads_is_refused(self):
        for name, *arguments in (("zeno", "--svg", "x"), ("zeno", "x"), ("grover", "--svgs", "x"), ("grover", "--svg")):
            refused = run(name, *arguments)
            self.assertEqual((refused.returncode, refused.stdout), (2, ""))
            self.assertIn("usage:", refused.stderr)
        self.assertEqual(run("grover", "--svg", "/no/such/directory/x").returncode, 1)


unittest.main()
