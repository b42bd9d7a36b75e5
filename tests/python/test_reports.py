"""Pages about scenes, against those of the command line."""

import threading

import pytest

import vortanxr as vx
from conftest import HEAD


@pytest.fixture
def scenes(examples, write, tmp_path):
    """One that imports, one that is refused, one that lacks footage, and one that is not there."""
    return [
        examples / "textured" / "shelf_040.aec",
        write("refused.aec", b"no scene"),
        write("missing.aec", HEAD + b'COMPOSITION NRM "Main" {\n  FILE NRM STRAIGHT "/nowhere/gone.tif"\n}\n'),
        tmp_path / "nowhere.aec",
    ]


def test_the_page_is_that_of_the_command_line(scenes, tmp_path, vxr):
    mine, theirs = tmp_path / "mine.html", tmp_path / "theirs.html"
    told = []
    vx.write_report(scenes, mine, pictures=1, progress=told.append)
    vxr("report", "--pictures", 1, "-o", theirs, "--", *scenes)
    assert mine.read_bytes() == theirs.read_bytes()
    assert told[0] == 0 and told[-1] == 1 and told == sorted(told)


def test_what_became_of_the_scenes(scenes, tmp_path):
    reported = vx.write_report(scenes, tmp_path / "page.html", pictures=0)
    assert [one.file for one in reported] == list(map(str, scenes))
    assert [one.exit_code for one in reported] == [0, 1, 4, 3]
    assert [bool(one) for one in reported] == [True, False, False, False]
    assert [one.missing_footage for one in reported] == [0, 0, 1, 0]
    assert all(one.verdict for one in reported)
    assert reported[1].diagnostics[0].severity == "error"


@pytest.mark.parametrize(
    ("arguments", "error"),
    [
        (lambda scene, page: (scene, page), TypeError),
        (lambda scene, page: ([], page), ValueError),
        (lambda scene, page: ([scene], scene), vx.OutputError),
        (lambda scene, page: ([scene], page / "no folder" / "page.html"), vx.PluginError),
    ],
    ids=["one path", "no path", "the page onto the scene", "a page that cannot be written"],
)
def test_wrong_requests(arguments, error, scenes, tmp_path):
    before = scenes[1].read_bytes()
    with pytest.raises(error):
        vx.write_report(*arguments(scenes[1], tmp_path / "page.html"))
    assert scenes[1].read_bytes() == before
    assert not (tmp_path / "page.html").exists()


@pytest.mark.parametrize(("name", "value"), [("pictures", -1), ("pictures", 101), ("threads", 257)])
def test_numbers_out_of_range(name, value, scenes, tmp_path):
    with pytest.raises(ValueError, match=f"{name} is {value}; it takes 0 to"):
        vx.write_report(scenes, tmp_path / "page.html", **{name: value})


def test_a_cancelled_report_leaves_the_old_page(scenes, write):
    page = write("page.html", b"old")
    cancel = threading.Event()
    with pytest.raises(vx.Cancelled):
        vx.write_report(scenes, page, pictures=0, cancel=cancel, progress=lambda part: cancel.set())
    assert page.read_bytes() == b"old"
    assert [one.name for one in page.parent.iterdir() if "page" in one.name] == ["page.html"]
