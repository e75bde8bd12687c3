"""What the module's enumerations are made of."""

from enum import Enum


class Word(str, Enum):
    """A member is a str and compares as one; where it is expected, its text will do in any case of letters."""

    def __str__(self):
        return self.value

    __format__ = str.__format__

    @classmethod
    def _missing_(cls, value):
        if isinstance(value, str):
            for name, member in cls.__members__.items():
                if value.upper() in (name, member.value.upper()):
                    return member
        words = ", ".join(member.value for member in cls)
        raise ValueError(f"{value!r} is unknown as a {cls.__name__}; known are {words}")
