"""What a screen reader finds of the window, and what a keyboard alone reaches: accessibility_test.py ZELTO [TEST…]"""
import sys
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.append(str(Path(__file__).resolve().parents[1] / "Support"))
import desktop
from pictures import png

desktop.enter()

import gi  # noqa: E402

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

State = Atspi.StateType
Role = Atspi.Role
WITHOUT_MEANING = (Role.FILLER, Role.UNKNOWN, Role.PANEL, Role.INVALID, Role.REDUNDANT_OBJECT)
MENU_ROLES = (Role.MENU_ITEM, Role.CHECK_MENU_ITEM, Role.RADIO_MENU_ITEM, Role.MENU)


def has(thing, state):
    return thing.get_state_set().contains(state)


def children(thing):
    # A list of many is asked for what is wanted of it, and for nothing else.
    count = min(thing.get_child_count(), 60)
    return [child for child in (thing.get_child_at_index(i) for i in range(count)) if child is not None]


def everything(thing):
    yield thing
    for child in children(thing):
        yield from everything(child)


def said(thing):
    return f"{thing.get_role_name()} {thing.get_name()!r}"


def path_of(thing):
    names = []
    while thing is not None and thing.get_role() != Role.APPLICATION:
        names.append(said(thing))
        thing = thing.get_parent()
    return " < ".join(names)


class Accessibility(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = desktop.Desktop(sys.argv[1], {})
        try:
            for number, color in enumerate(((200, 40, 40), (40, 160, 60), (60, 80, 200))):
                (cls.desktop.home / f"picture {number}.png").write_bytes(png([bytes(color) * (40 + number)] * (40 + number)))
            cls.desktop.command("import", *(str(cls.desktop.home / f"picture {n}.png") for n in range(3)))
            cls.desktop.open_window()
            cls.application = desktop.wait_for(cls.find_application, "the program on the bus")
            cls.grid = desktop.wait_for(lambda: cls.find(Role.LIST, "Items"), "the grid")
            desktop.wait_for(lambda: cls.grid.get_child_count() == 3, "three items")
        except BaseException:
            cls.desktop.close()
            raise

    @classmethod
    def tearDownClass(cls):
        cls.desktop.close()

    @classmethod
    def find_application(cls):
        root = Atspi.get_desktop(0)
        return next((each for each in children(root) if each.get_name() == "Zelto" and each.get_child_count() > 0), None)

    @classmethod
    def find(cls, role, name):
        return next((thing for thing in everything(cls.application)
                     if thing.get_role() == role and thing.get_name() == name and has(thing, State.SHOWING)), None)

    @classmethod
    def focused(cls):
        """The innermost thing that has the focus. The current entry of a list says so even where the list has it not."""
        found = None
        waiting = [cls.application]
        while waiting:
            thing = waiting.pop()
            if has(thing, State.FOCUSED) and has(thing, State.SHOWING):
                found = thing
            if not has(thing, State.MANAGES_DESCENDANTS) or has(thing, State.FOCUSED):
                waiting.extend(children(thing))
        return found

    def focus_items(self):
        self.desktop.press("Escape")
        self.grid.grab_focus()
        desktop.wait_for(lambda: has(self.grid, State.FOCUSED), "the focus in the grid")

    def check_tree(self, where):
        problems = []
        for thing in everything(self.application):
            if not has(thing, State.SHOWING):
                continue
            if has(thing, State.FOCUSABLE):
                if not thing.get_name().strip():
                    problems.append("without a name: " + path_of(thing))
                if thing.get_role() in WITHOUT_MEANING:
                    problems.append("without a role: " + path_of(thing))
            seen = set()
            if thing.get_role() in (Role.LIST, Role.TREE, Role.TREE_TABLE):
                continue  # items may be called alike
            for child in children(thing):
                if has(child, State.FOCUSABLE) and has(child, State.SHOWING):
                    heard = said(child), child.get_description()  # two dates may be the same
                    if heard in seen:
                        problems.append("twice: " + path_of(child))
                    seen.add(heard)
        self.assertEqual(problems, [], where)

    def test_everything_that_takes_the_focus_says_what_it_is(self):
        self.check_tree("at first")
        self.focus_items()
        self.desktop.press("Home")
        self.desktop.press("ctrl+alt+f")
        desktop.wait_for(lambda: has(self.grid, State.SHOWING) and self.find(Role.TEXT, "Title"), "the info panel of an item")
        self.check_tree("with an item selected and the refine bar")
        self.desktop.press("ctrl+alt+f")
        self.desktop.press("ctrl+e")
        desktop.wait_for(lambda: self.find(Role.PUSH_BUTTON, "Edit presets"), "the export panel")
        self.check_tree("with the export panel")
        self.desktop.press("ctrl+shift+i")
        self.focus_items()

    def test_every_pane_of_the_preferences_says_what_it_has(self):
        self.desktop.press("ctrl+comma")
        names = desktop.wait_for(lambda: next((thing for thing in everything(self.application) if thing.get_role() == Role.LIST and
                                               has(thing, State.SHOWING) and thing.get_name() != "Items" and
                                               thing.get_child_count() > 5), None), "the names of the panes")
        count = names.get_child_count()
        for place in range(count):
            entry = names.get_child_at_index(place)
            self.desktop.press("Home" if place == 0 else "Down")
            desktop.wait_for(lambda: has(entry, State.SELECTED), f"the pane {entry.get_name()}")
            self.check_tree("in the pane " + entry.get_name())
        self.desktop.press("Escape")
        desktop.wait_for(lambda: has(self.grid, State.SHOWING) and not has(names, State.SHOWING), "the window")

    def test_items_are_heard_of_chosen_and_opened(self):
        self.assertTrue(has(self.grid, State.MANAGES_DESCENDANTS), "or all are asked for")
        first, second = self.grid.get_child_at_index(0), self.grid.get_child_at_index(1)
        self.assertEqual({child.get_name() for child in children(self.grid)}, {f"picture {n}.png" for n in range(3)})
        place = second.get_extents(Atspi.CoordType.SCREEN)
        hit = self.grid.get_accessible_at_point(place.x + place.width // 2, place.y + place.height // 2, Atspi.CoordType.SCREEN)
        self.assertEqual(hit.get_name(), second.get_name())
        table = self.grid.get_table_iface()
        self.focus_items()
        self.desktop.press("Home")
        desktop.wait_for(lambda: has(first, State.SELECTED) and has(first, State.FOCUSED), "the first one selected")
        self.assertTrue(table.add_row_selection(1))
        desktop.wait_for(lambda: list(table.get_selected_rows()) == [0, 1], "both selected")
        self.assertTrue(table.remove_row_selection(0))
        desktop.wait_for(lambda: list(table.get_selected_rows()) == [1], "the second one selected")
        press = [second.get_action_name(i) for i in range(second.get_n_actions())].index("Press")
        second.do_action(press)
        title = second.get_name().removesuffix(".png")
        detail = desktop.wait_for(lambda: self.find(Role.IMAGE, title), "the full view")
        self.desktop.press("Escape")
        desktop.wait_for(lambda: not has(detail, State.SHOWING), "the items")

    def test_stars_and_tabs_are_told_and_set(self):
        self.focus_items()

        def rating():
            self.desktop.press("Home")
            return next((thing for thing in everything(self.application) if thing.get_role() == Role.SLIDER and
                         thing.get_name().startswith("Rating") and has(thing, State.SHOWING)), None)

        stars = desktop.wait_for(rating, "the rating")
        value = stars.get_value_iface()
        self.assertEqual(value.get_maximum_value(), 5)
        value.set_current_value(3)
        desktop.wait_for(lambda: stars.get_name() == "Rating: 3 of 5", "three stars")
        self.assertEqual(value.get_current_value(), 3)
        value.set_current_value(0)
        self.desktop.press("ctrl+t")
        tabs = desktop.wait_for(lambda: self.find(Role.PAGE_TAB_LIST, "Tabs"), "the tabs")
        pages = desktop.wait_for(lambda: [each for each in children(tabs) if each.get_role() == Role.PAGE_TAB][1:] and
                                 [each for each in children(tabs) if each.get_role() == Role.PAGE_TAB], "two tabs")
        desktop.wait_for(lambda: has(pages[1], State.SELECTED), "the new tab")
        pages[0].do_action(0)
        desktop.wait_for(lambda: has(pages[0], State.SELECTED), "the first tab")
        self.desktop.press("ctrl+2")
        desktop.wait_for(lambda: has(pages[1], State.SELECTED), "the new tab again")
        self.desktop.press("ctrl+w")

    def test_compared_pictures_say_what_they_are_and_what_is_done(self):
        self.focus_items()
        titles = [self.grid.get_child_at_index(place).get_name().removesuffix(".png") for place in (0, 1)]
        self.desktop.press("Home", "shift+Right", "ctrl+k")
        first, second = (desktop.wait_for(lambda: self.find(Role.IMAGE, title), title) for title in titles)
        self.check_tree("with two pictures compared")
        self.assertIn("which differs", first.get_description())
        desktop.wait_for(lambda: has(first, State.SELECTED) and has(first, State.FOCUSED), "the first one current")
        self.desktop.press("Right")
        desktop.wait_for(lambda: has(second, State.SELECTED) and not has(first, State.SELECTED), "the second one current")
        with Listener("object:state-changed:showing", lambda thing: thing.get_role() == Role.NOTIFICATION) as shown:
            self.desktop.press("3")
            self.assertEqual(shown.wait("what is said of the rating").get_name(), "Rating: 3 of 5")
            self.desktop.press("x")
            self.assertIn(titles[1], shown.wait("what is said of the one taken out").get_name())
        self.assertTrue(self.find(Role.PANEL, "Compare"), "it keeps its name")
        self.desktop.press("Escape")
        desktop.wait_for(lambda: has(self.grid, State.SHOWING), "the items")
        self.desktop.press("ctrl+z")

    def test_tab_goes_everywhere_and_comes_back(self):
        self.focus_items()
        start = path_of(self.focused())
        visited = [start]
        while len(visited) < 80:
            before = visited[-1]
            self.desktop.press("Tab")
            desktop.wait_for(lambda: (now := self.focused()) is not None and path_of(now) != before, f"what follows {before}")
            visited.append(path_of(self.focused()))
            if visited[-1] == start:
                break
        self.assertEqual(visited[-1], start, "Tab comes round")
        everywhere = "\n".join(visited)
        for name in ("Sidebar", "New Project", "Import", "Tabs", "'Search'", "Menu", "As Grid", "Sort", "Thumbnail size", "Projects"):
            self.assertIn(name, everywhere)

    def test_the_menu_key_leads_to_every_command(self):
        self.focus_items()
        with Listener("object:state-changed:focused", lambda thing: thing.get_role() in MENU_ROLES) as focus:
            self.desktop.press("F10")
            self.desktop.press("Down")
            first = focus.wait("the first command")
            entries = self.commands_below(first.get_parent())
            self.assertGreater(len(entries), 3)
            reached = self.walk(focus, first, len(entries))
            self.assertLessEqual({said(entry) for entry in entries}, reached.keys())
            commands = 0
            for _ in range(len(entries)):  # round again, into each of them
                self.desktop.press("Down")
                entry = focus.wait("the next command")
                if not entry.get_child_count():
                    commands += 1
                    continue
                self.desktop.press("Right")
                first = focus.wait("the first command in " + said(entry))
                inner = self.commands_below(first.get_parent())
                found = self.walk(focus, first, len(inner))
                self.assertLessEqual({said(each) for each in inner}, found.keys(), said(entry))
                commands += len(inner)
                self.desktop.press("Left")
                focus.drain()
            self.assertGreater(commands, 30)
        self.desktop.press("Escape", "Escape")

    @staticmethod
    def commands_below(menu):
        return [each for each in children(menu) if each.get_role() in MENU_ROLES and has(each, State.SENSITIVE) and
                each.get_name()]

    def walk(self, focus, first, count):
        """Down from the first entry, as often as there are entries; those that were heard of."""
        reached = {said(first): first}
        for _ in range(count - 1):
            self.desktop.press("Down")
            thing = focus.wait("what follows " + " ".join(reached))
            reached[said(thing)] = thing
        return reached

    def test_notifications_are_read_out(self):
        self.focus_items()
        with Listener("object:state-changed:showing",
                      lambda thing: thing.get_role() == Role.NOTIFICATION and thing.get_name().startswith("There is no")) as shown:
            self.desktop.press("ctrl+v")  # with nothing on the clipboard
            self.assertIn("clipboard", shown.wait("what is said about the clipboard").get_name())


class Listener:
    """What is told of things that `are_wanted`."""
    def __init__(self, kind, are_wanted):
        self.kind = kind
        self.are_wanted = are_wanted
        self.things = []
        self.listener = Atspi.EventListener.new(self.hear)

    def hear(self, event):
        if event.detail1 and self.are_wanted(event.source):
            self.things.append(event.source)

    def __enter__(self):
        self.listener.register(self.kind)
        return self

    def __exit__(self, *_):
        self.listener.deregister(self.kind)

    def drain(self):
        while GLib.MainContext.default().iteration(False):
            pass
        self.things.clear()

    def wait(self, what):
        def turn():
            while GLib.MainContext.default().iteration(False):
                pass
            return self.things and self.things.pop(0)

        return desktop.wait_for(turn, what)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], "-v", *sys.argv[2:]])
