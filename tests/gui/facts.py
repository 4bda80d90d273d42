"""What a window tells of the selected connection."""

from waiting import NotNow


class Facts:
    """The texts of `window` by their accessible names, which its class reads (`_facts`)."""

    @property
    def facts(self):
        """All texts of the details and the status line, by accessible name."""
        return self.window.patiently(self._facts, "the facts")

    def expect_facts(self, wanted):
        """Waits until the facts of these names have these texts."""
        def look():
            found = self._facts()
            different = {name: found.get(name) for name, text in wanted.items() if found.get(name) != text}
            if different:
                raise NotNow(f"different are {different}")
        self.window.patiently(look, f"the facts {wanted}")
