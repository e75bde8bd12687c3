"""What the module's enumerations are made of."""

from enum import Enum


class Word(str, Enum):
    """A member is a str and compares as one; where it is expected, its text will do in any case of letters."""

    def __str__(self) -> str:
        return str(self.value)

    def __format__(self, format_spec: str) -> str:
        return format(str(self.value), format_spec)

    @classmethod
    def _missing_(cls, value: object) -> "Word":
        if isinstance(value, str):
            for name, member in cls.__members__.items():
                if value.upper() in (name, member.value.upper()):
                    return member
        words = ", ".join(member.value for member in cls)
        raise ValueError(f"{value!r} is unknown as a {cls.__name__}; known are {words}")
