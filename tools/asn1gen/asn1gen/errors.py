"""The one exception the compiler raises for bad input: "file:line: message"."""


class CompileError(Exception):
    """A refusal of the input, located at a file and line."""

    def __init__(self, file, line, message):
        super().__init__(f"{file}:{line}: {message}")
        self.file = file
        self.line = line
        self.message = message
