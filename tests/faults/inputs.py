"""The inputs of the builds under test: lists of tracks and playlists, and XML menu trees."""

from dataclasses import dataclass

LONG_NAME = "A name of more than sixty-four bytes, which the inventory has no room for"


def tracks(count: int) -> bytes:
    """Tracks of all kinds: with and without artist, album, genre and rating, some ids twice."""
    lines = ["# media id, title, artist, album, genre, rating"]
    for i in range(count):
        title = LONG_NAME if i == 2 else f"Song {i * 7919 % count:05}"
        artist, album, genre = i % max(3, count // 8), i % max(4, count // 5), i % 5
        line = f"{i - (i % 11 == 10)}|{title}|{artist}|Artist {artist}|{album}|Album {album}"
        lines.append(f"{line}|{genre}|Genre {genre}" + f"|{i % 4}" * (i % 4 > 0))
    return "\n".join(lines).encode()


def playlists(number: int, count: int) -> bytes:
    """So many playlists, each of some of so many tracks."""
    blocks = []
    for i in range(number):
        members = "".join(f"{(i * 13 + k * 3) % count}\n" for k in range(4))
        blocks.append(f"List {i}\n{i + 1}\n{members}-1\n")
    return "\n".join(blocks).encode()


@dataclass
class Element:
    depth: int  # 1 for those right below the document's root
    start: str  # tag and attributes


def elements(menus: int, songs: int) -> list[Element]:
    """So many menus of so many songs each."""
    found = [Element(1, 'partition name="Part" partitionid="9"')]
    for menu in range(menus):
        found.append(Element(1, f'menu name="Menu {menu}" rectype="6"'))
        for song in range(songs):
            i = menu * songs + song
            name = LONG_NAME if i == 1 else f"Song {i * 7 % 1000:04}"
            found.append(Element(2, f'media name="{name}" mediaid="{i}" rating="{i % 4}"'))
    return found


def document(body: list[Element], name: str = "Home") -> bytes:
    """A tree of these elements. Any first few of them make a document, too."""
    text = [f'<inventory name="{name}">\n' if name else "<inventory>\n"]
    open_tags: list[str] = []
    for element in body:
        while len(open_tags) >= element.depth:
            text.append(f"</{open_tags.pop()}>\n")
        text.append(f"<{element.start}>")
        open_tags.append(element.start.split()[0])
    while open_tags:
        text.append(f"</{open_tags.pop()}>\n")
    return "".join([*text, "</inventory>\n"]).encode()
