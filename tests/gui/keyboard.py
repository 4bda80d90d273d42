"""Keys as the X server gives them to programs."""


class Keyboard:
    """Presses keys on `screen`. Its class says when somebody gets them (`_expect_keys`) and when they have been handled
    (`settle`)."""

    def press(self, *chords):
        """Presses keys by their X names, such as "Tab", "alt+y" or "shift+F10", one chord after the other."""
        for chord in chords:
            self._expect_keys()
            self.screen.press(chord)
            self.settle()

    def type(self, text):
        """Types a text faster than any program follows; each key goes to what then has the focus."""
        self._expect_keys()
        for character in text:
            self.screen.press(character)
        self.settle()
