"""XML documents that mean no good: what is fetched, what is read, and what they come to."""

import re
import shutil
import subprocess
from concurrent.futures import ThreadPoolExecutor

from program import HostileTest

MILLION = 1_000_000
REFUSED = b"Exception caught: "


class XmlTest(HostileTest):
    def assert_same(self, pieces, other):
        self.assertEqual(self.read_xml(pieces), self.read_xml(other))

    def assert_refused(self, pieces, reason: bytes):
        """The document is refused for that reason and leaves what the empty document leaves."""
        said, inventories = self.read_xml(pieces)
        self.assertTrue(said.startswith(REFUSED), said[:1000])
        self.assertIn(reason, said)
        self.assertLess(len(said), 2000)
        self.assertEqual(inventories, self.read_xml([b"<inventory/>"])[1])


class Bombs(XmlTest):
    @staticmethod
    def laughs(levels: int, innermost: bytes = b"lol") -> bytes:
        return b"<!ENTITY l0 '%s'>" % innermost + b"".join(
            b"<!ENTITY l%d '%s'>" % (level, b"&l%d;" % (level - 1) * 10)
            for level in range(1, levels + 1))

    def test_a_billion_laughs(self):
        for content in (b"<m>&l9;</m>", b"<m name='&l9;'/>", b"<m><m name='&l9;'>&l9;</m></m>"):
            for innermost in (b"lol", b""):
                self.assert_refused([b"<!DOCTYPE r [", self.laughs(9, innermost), b"]><r>", content,
                                     b"</r>"], b"Detected an entity reference loop")

    def test_a_billion_laughs_in_the_dtd(self):
        self.assert_refused(
            [b"<!DOCTYPE r [", self.laughs(9), b"<!ATTLIST r name CDATA '&l9;'>]><r/>"],
            b"Detected an entity reference loop")

    def test_laughs_of_parameter_entities(self):
        self.assert_refused(
            [b"<!DOCTYPE r [<!ENTITY % a0 ''>",
             *(b"<!ENTITY %% a%d '%s'>" % (i, b"&#37;a%d;" % (i - 1) * 10) for i in range(1, 9)),
             b"%a8;]><r/>"], b"Too many references to parameter entities")

    def test_one_large_entity_many_times(self):
        large = b"<!DOCTYPE r [<!ENTITY e '" + b"x" * MILLION + b"'>]>"
        self.assert_same([large, b"<r><m name='", b"&e;" * 50_000, b"'/></r>"],
                         [b"<r><m name='", b"x" * 62, b"'/></r>"])
        self.assert_same([large, b"<r>", b"<m name='&e;'/>" * 50_000, b"</r>"],
                         [b"<r>", b"<m name='%s'/>" % (b"x" * 62) * 50_000, b"</r>"])

    def test_one_large_default_many_times(self):
        self.assert_same([b"<!DOCTYPE r [<!ATTLIST m rectype CDATA '", b"0" * MILLION,
                          b"9'>]><r>", b"<m/>" * 50_000, b"</r>"],
                         [b"<r>", b"<m rectype='9'/>" * 50_000, b"</r>"])

    def test_an_attribute_of_many_references(self):
        dtd = b"<!DOCTYPE r [<!ENTITY e 'x'><!ENTITY n '0'>]>"
        self.assert_same([dtd, b"<r><m name='", b"&e;" * 200_000, b"'/></r>"],
                         [b"<r><m name='", b"x" * 62, b"'/></r>"])
        self.assert_same([dtd, b"<r><m rectype='", b"&n;" * 200_000, b"9'/></r>"],
                         [b"<r><m rectype='9'/></r>"])

    def test_depth(self):
        self.assert_same([b"<m>" * 257, b"</m>" * 257], [b"<r>", b"<m>" * 256, b"</m>" * 256,
                                                        b"</r>"])
        self.assert_refused([b"<m>" * 258, b"</m>" * 258], b"Excessive depth in document: 256")
        self.assert_refused([b"<m>" * MILLION], b"Excessive depth in document: 256")


class Sizes(XmlTest):
    def test_attributes_of_ten_megabytes(self):
        long = b"x" * (10 * MILLION - 100)
        self.assert_same([b"<r><m name='", long, b"'/></r>"],
                         [b"<r><m name='", b"x" * 62, b"'/></r>"])
        self.assert_same([b"<r><m rectype='", long.replace(b"x", b"9"), b"'/></r>"],
                         [b"<r><m rectype='-1'/></r>"])
        self.assert_refused([b"<r><m name='", long, long, b"'/></r>"],
                            b"Couldn't find end of Start Tag m")

    # On one element they take libxml2 time that grows with their square.
    def test_a_million_attributes(self):
        attributes = b" ".join(b"a%d=''" % i for i in range(1000))
        self.assert_same([b"<r>", b"<m %s name='x'/>" % attributes * 1000, b"</r>"],
                         [b"<r>", b"<m name='x'/>" * 1000, b"</r>"])

    def test_many_attributes_on_one_element(self):
        attributes = b" ".join(b"a%d=''" % i for i in range(10_000))
        self.assert_same([b"<r><m ", attributes, b" name='x'/></r>"], [b"<r><m name='x'/></r>"])

    def test_a_million_comments(self):
        self.assert_same([b"<r>", b"<!---->" * MILLION, b"<m/></r>"], [b"<r><m/></r>"])
        one_layout = 16 + 16 + 80 * (MILLION + 2)
        said, (one, _) = self.read_xml([b"<r><m>", b"<!---->" * MILLION, b"</m></r>"])
        self.assertEqual((said, len(one)), (b"", one_layout))

    def test_a_long_text(self):
        self.assert_same([b"<r><m>", b"x" * (9 * MILLION), b"</m></r>"], [b"<r><m>x</m></r>"])

    def test_a_long_name(self):
        self.assert_refused([b"<r><", b"m" * MILLION, b"/></r>"], b"invalid element name")


class Fetching(XmlTest):
    """A document names other files and hosts; none of them is opened."""

    DOCUMENTS = (
        b"<!DOCTYPE r SYSTEM 'secret.dtd'><r><m/></r>",
        b"<!DOCTYPE r SYSTEM 'http://fetched.invalid/x.dtd'><r><m/></r>",
        b"<!DOCTYPE r PUBLIC '-//A//B//EN' 'ftp://fetched.invalid/x.dtd'><r><m/></r>",
        b"<!DOCTYPE r [<!ENTITY e SYSTEM 'secret.txt'>]><r><m>&e;</m></r>",
        b"<!DOCTYPE r [<!ENTITY e SYSTEM 'file:secret.txt'>]><r><m>&e;</m><m>&e;</m></r>",
        b"<!DOCTYPE r [<!ENTITY e SYSTEM '/etc/passwd'>]><r><m>&e;</m></r>",
        b"<!DOCTYPE r [<!ENTITY e SYSTEM 'http://127.0.0.1:9/x'>]><r><m>&e;</m></r>",
        b"<!DOCTYPE r [<!ENTITY e SYSTEM 'secret.txt'>]><r><m name='&e;'/></r>",
        b"<!DOCTYPE r [<!ENTITY % p SYSTEM 'secret.dtd'>%p;]><r><m/></r>",
        b"<!DOCTYPE r [<!ENTITY % p SYSTEM 'http://fetched.invalid/p'>%p;]><r><m/></r>",
        b"<r xmlns:xi='http://www.w3.org/2001/XInclude'><m><xi:include href='secret.txt'"
        b" parse='text'/></m></r>",
        b"<?xml-stylesheet href='secret.txt'?><r><m/></r>",
        b"<r xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:schemaLocation='urn:s"
        b" secret.xsd'><m/></r>",
    )

    def test_nothing_is_opened_but_the_document(self):
        strace = shutil.which("strace")
        self.assertTrue(strace, "strace is needed")
        for name in ("secret.txt", "secret.dtd", "secret.xsd"):
            (self.folder / name).write_bytes(b"secret")
        usual = self.trace(strace, b"<r><m/></r>")
        self.assertEqual(usual[-2:], ["menu.xml", "out"])
        for document in self.DOCUMENTS:
            with self.subTest(document):
                self.assertEqual(self.trace(strace, document), usual)
                self.assertNotIn(b"secret", (self.folder / "out").read_bytes())

    def trace(self, strace: str, document: bytes) -> list[str]:
        """The files that are opened, in order; any call to the network is a failure."""
        (self.folder / "menu.xml").write_bytes(document)
        done = self.run_program("skeinmake", "-x", "menu.xml", "-o", "out",
                                wrap=(strace, "-f", "-o", "trace", "-e",
                                      "trace=%network,open,openat,openat2,execve"))
        self.assertEqual(done.status, 0, done.stderr)
        opened = []
        for line in (self.folder / "trace").read_text().splitlines():
            call = re.match(r"\d+ +(\w+)\((.*)", line)
            if call is None:
                self.assertIn("+++ exited with 0 +++", line)
            elif call[1] in ("open", "openat", "openat2"):
                opened.append(re.search(r'"([^"]*)"', call[2])[1])
            else:
                self.assertEqual(call[1], "execve")
        return opened


class Encodings(XmlTest):
    DOCUMENT = "<?xml version='1.0' encoding='%s'?><r name='Root'><m name='abc XYZ 019'/></r>"
    # UTF-16 begins with a byte-order mark; IBM's are without ASCII.
    TAKEN = """UTF-8 UTF-16 UTF-16LE UTF-16BE UCS-4 US-ASCII ISO-8859-1 ISO-8859-2 ISO-8859-3
        ISO-8859-4 ISO-8859-5 ISO-8859-6 ISO-8859-7 ISO-8859-8 ISO-8859-9 ISO-8859-10 ISO-8859-13
        ISO-8859-14 ISO-8859-15 ISO-8859-16 WINDOWS-1250 WINDOWS-1251 WINDOWS-1252 KOI8-R KOI8-U
        MACINTOSH SHIFT_JIS EUC-JP EUC-KR ISO-2022-JP BIG5 GB2312 GB18030 GBK IBM037 IBM500
        IBM1047""".split()

    def test_every_encoding_is_read_or_refused(self):
        listed = subprocess.run(["iconv", "-l"], capture_output=True, text=True, check=True).stdout
        names = sorted({name.strip("/,") for name in listed.split()})
        self.assertGreater(len(names), 500)
        self.assertEqual(set(self.TAKEN) - set(names), set())
        expected = self.inventory_of("UTF-8")
        refused = self.read_xml([b"<r/>"])[1][1]
        with ThreadPoolExecutor(2) as pool:
            found = dict(zip(names, pool.map(self.inventory_of, names)))
        wrong = [name for name, inventory in found.items()
                 if inventory not in (expected, refused, b"")]
        self.assertEqual(wrong, [])
        self.assertEqual([name for name in self.TAKEN if found[name] != expected], [])

    def inventory_of(self, encoding: str) -> bytes:
        """The inventory of the document in that encoding; nothing if it has no such letters."""
        document = subprocess.run(
            ["iconv", "-f", "UTF-8", "-t", encoding], input=(self.DOCUMENT % encoding).encode(),
            capture_output=True, check=False)
        if document.returncode != 0:
            return b""
        name = encoding.replace("/", "-")
        (self.folder / f"{name}.xml").write_bytes(document.stdout)
        done = self.run_program("skeinmake", "-x", f"{name}.xml", "-o", f"{name}.inv")
        self.assertEqual((done.status, done.stderr), (0, b""), encoding)
        inventory = (self.folder / f"{name}.inv").read_bytes()
        self.assertIn(done.stdout[:len(REFUSED)], (b"", REFUSED), encoding)
        # What is refused leaves an inventory of one record.
        self.assertEqual(bool(done.stdout), b"Root" not in inventory, encoding)
        return inventory
