"""The document, written and read."""

import unittest

from table import COMPLETE, Row, merged, read, write


def row(name, found=10, shortfalls=()):
    return Row(name, "GTK 3.24.38", f"{name} 1.2", 10, found, 9, 0, 5, 4, 12.34, list(shortfalls))


class Verdict(unittest.TestCase):
    def verdict(self, **changes):
        values = {"controls": 50, "found": 50, "exact": 40, "unseen": 0, "clicked": 10, "confirmed": 10, **changes}
        return Row("a", "Qt 6.4.2", "a 1", milliseconds=9.9, **values).is_good()

    def test_one_of_fifty_may_be_missed_and_two_may_not(self):
        self.assertTrue(self.verdict(found=49))
        self.assertFalse(self.verdict(found=48))

    def test_nothing_unseen_may_be_found(self):
        self.assertFalse(self.verdict(unseen=1))

    def test_every_click_goes_where_it_was_meant_to_go(self):
        self.assertFalse(self.verdict(confirmed=9))

    def test_nothing_proves_nothing(self):
        self.assertFalse(self.verdict(controls=0, found=0))
        self.assertFalse(self.verdict(clicked=0, confirmed=0))


class Table(unittest.TestCase):
    def test_what_is_written_is_read_again(self):
        text = write([row("gedit", 8, ["2 not found. GTK 3.24.38: so it is", "1 not exact"]), row("mousepad")])
        self.assertEqual(write(read(text)), text)
        gedit = read(text)[0]
        self.assertEqual((gedit.found, gedit.exact, gedit.confirmed, gedit.clicked, gedit.milliseconds), (8, 9, 4, 5, 12.3))
        self.assertEqual(gedit.shortfalls, ["2 not found. GTK 3.24.38: so it is", "1 not exact"])

    def test_rows_are_sorted_by_name(self):
        self.assertEqual([each.name for each in read(write([row("b"), row("a")]))], ["a", "b"])

    def test_a_new_row_takes_the_place_of_the_old_one_and_the_others_stay(self):
        rows = merged([row("a", 1), row("b", 2)], [row("b", 3)])
        self.assertEqual([(each.name, each.found) for each in rows], [("a", 1), ("b", 3)])

    def test_without_shortfalls_the_page_says_so(self):
        self.assertIn(COMPLETE, write([row("a")]))
        self.assertNotIn(COMPLETE, write([row("a", 9, ["1 not found"])]))


if __name__ == "__main__":
    unittest.main()
