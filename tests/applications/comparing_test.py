"""What found, exact and unseen mean."""

import unittest

from application import Control, Shortfall
from comparing import Candidate, compare, explain, is_confirmed, next_click

SAVE = (100, 50, 80, 30)


def control(text="Save", frame=SAVE, kind="button", id="1", **more):
    return Control(id=id, kind=kind, text=text, frame=frame, **more)


def found(text="Save", frame=SAVE, number=0):
    return Candidate(number, "AXButton", text, frame)


class Finding(unittest.TestCase):
    def missed(self, one, candidate):
        return bool(compare([one], [candidate]).missed)

    def test_a_candidate_of_the_same_frame_and_text_is_the_controls(self):
        result = compare([control()], [found()])
        self.assertEqual((result.counted, len(result.found), result.exact, result.unseen), (1, 1, 1, []))

    def test_a_text_may_stand_among_others_and_be_broken_into_lines(self):
        self.assertFalse(self.missed(control("All  my\nfiles"), found("Save All my files 0")))

    def test_another_text_is_another_control(self):
        self.assertTrue(self.missed(control(), found("Open")))

    def test_letters_count_as_they_are_written(self):
        self.assertTrue(self.missed(control("Save"), found("save")))

    def test_a_control_without_a_text_is_found_by_its_place(self):
        self.assertFalse(self.missed(control(""), found("Help")))

    def test_a_frame_elsewhere_is_another_control(self):
        self.assertTrue(self.missed(control(), found(frame=(190, 50, 80, 30))))

    def test_a_frame_far_too_large_is_another_control(self):
        self.assertTrue(self.missed(control(), found(frame=(60, 35, 160, 60))))

    def test_a_frame_half_as_large_still_finds_but_is_not_exact(self):
        result = compare([control()], [found(frame=(120, 50, 41, 30))])
        self.assertEqual((len(result.found), result.exact), (1, 0))

    def test_two_pixels_are_exact_and_three_are_not(self):
        for pixels, exact in ((2, 1), (3, 0)):
            frame = (100, 50, 80 + pixels, 30)
            self.assertEqual(compare([control()], [found(frame=frame)]).exact, exact, pixels)

    def test_the_box_of_the_letters_is_as_good_as_the_whole(self):
        label = control(frame=(0, 0, 400, 30), text_frame=(160, 5, 80, 20))
        self.assertEqual(compare([label], [found(frame=(160, 5, 80, 20))]).exact, 1)

    def test_what_is_left_of_a_control_that_is_cut_off_is_as_good_as_the_whole(self):
        self.assertEqual(compare([control(visible=(100, 50, 80, 20))], [found(frame=(100, 50, 80, 20))]).exact, 1)

    def test_the_exact_one_of_two_candidates_is_taken(self):
        result = compare([control()], [found(frame=(100, 50, 70, 30), number=0), found(number=1)])
        self.assertEqual((result.exact, result.found["1"][1].number), (1, 1))

    def test_parts_things_that_do_nothing_and_what_is_cut_off_are_not_counted(self):
        others = [control(id="2", inside="1"), control(id="3", counted=False), control(id="4", seen="cut")]
        self.assertEqual(compare([control()] + others, []).counted, 1)


class Unseen(unittest.TestCase):
    def unseen(self, controls, candidate):
        return bool(compare(controls, [candidate]).unseen)

    def test_a_candidate_where_nothing_is_can_not_be_seen(self):
        self.assertTrue(self.unseen([control()], found("Print", (500, 50, 80, 30))))

    def test_a_candidate_on_a_much_larger_thing_can_not_be_seen(self):
        self.assertTrue(self.unseen([control("", (0, 0, 800, 600), "widget", counted=False)], found("Print")))

    def test_things_that_are_not_counted_can_be_seen(self):
        self.assertFalse(self.unseen([control("", kind="picture", counted=False)], found("Logo")))

    def test_what_is_cut_off_may_be_found(self):
        self.assertFalse(self.unseen([control(seen="cut", visible=(100, 50, 80, 5))], found()))

    def test_a_part_of_a_text_can_be_seen(self):
        text = control("Read the rules first", (0, 0, 400, 20), "label")
        self.assertFalse(self.unseen([text], found("the rules", (50, 0, 80, 20))))
        self.assertTrue(self.unseen([text], found("the laws", (50, 0, 80, 20))))


class Clicking(unittest.TestCase):
    def test_kinds_take_turns_and_texts_go_before_pictures(self):
        controls = [control("", (0, 0, 80, 30), id="1"), control("Bold", (0, 40, 80, 30), "check box", "2"),
                    control("Save", (0, 80, 80, 30), id="3"), control("Wide", (0, 120, 80, 30), "check box", "4")]
        comparison = compare(controls, [found(each.text, each.frame) for each in controls])
        tried, order = [], []
        while (chosen := next_click(comparison, "^$", tried)) is not None:
            tried.append((chosen[0].id, chosen[0].kind))
            order.append(chosen[0].id)
        self.assertEqual(order, ["2", "3", "4", "1"])

    def test_what_a_click_must_leave_alone_is_left_alone(self):
        comparison = compare([control("Quit")], [found("Quit")])
        self.assertIsNone(next_click(comparison, "button: Quit", []))

    def test_what_is_not_found_is_not_clicked(self):
        self.assertIsNone(next_click(compare([control()], []), "^$", []))

    def test_a_part_of_a_cell_is_confirmed_by_the_cell(self):
        self.assertTrue(is_confirmed(control(id="7/3/1#0"), ["7/3/1#2"]))
        self.assertFalse(is_confirmed(control(id="7/3/1#0"), ["7/3/2#0"]))


class Reasons(unittest.TestCase):
    def test_each_reason_is_told_once_with_all_that_it_explains(self):
        known = [Shortfall("^cell", "no cells"), Shortfall("Save", "no save")]
        self.assertEqual(explain(["cell: a", "button: Save", "cell: b", "tab: c"], known),
                         {"no cells": ["cell: a", "cell: b"], "no save": ["button: Save"], None: ["tab: c"]})


if __name__ == "__main__":
    unittest.main()
