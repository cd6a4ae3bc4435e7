"""What the tables say, as values."""
import re
from collections import OrderedDict
from dataclasses import dataclass

MAX_FIELDS = 15

# The short form in the table, the type in C++ and how a value stands in the text of a message.
FIELD_TYPES = OrderedDict(
    i32=("int", "signed 32-bit number"),
    u32=("unsigned", "unsigned 32-bit number"),
    i64=("int64_t", "signed 64-bit number"),
    u64=("uint64_t", "unsigned 64-bit number"),
    str=("Cmm::CStringA", "text, in memory as UTF-8"),
    wstr=("Cmm::CStringW", "text, in memory as UTF-16"),
)


@dataclass(frozen=True)
class Field:
    type: str  # a key of FIELD_TYPES
    name: str

    @property
    def cpp_type(self):
        return FIELD_TYPES[self.type][0]


@dataclass(frozen=True)
class Message:
    line: int  # in the table
    family: str
    id: int
    class_name: str
    wire_name: str
    fields: tuple

    @property
    def signature(self):
        return tuple(field.type for field in self.fields)


@dataclass(frozen=True)
class Family:
    line: int
    name: str  # as in the first column of the table of messages
    file: str  # stem of its header and source
    title: str
    summary: str


@dataclass(frozen=True)
class IdReuse:
    """Two messages of one id, and perhaps of one wire name, which must stay so."""

    line: int
    id: int
    first_class: str
    second_class: str
    same_wire_name: bool
    effect: str

    @property
    def classes(self):
        return (self.first_class, self.second_class)


@dataclass(frozen=True)
class Note:
    line: int
    class_name: str
    text: str


@dataclass(frozen=True)
class Catalogue:
    families: tuple
    messages: tuple
    id_reuses: tuple
    notes: tuple

    def messages_of(self, family):
        return [message for message in self.messages if message.family == family.name]

    def remarks_on(self, message):
        """Sentences that say what about a message looks like a mistake and is none."""
        for reuse in self.id_reuses:
            if message.class_name in reuse.classes:
                other = reuse.classes[1 - reuse.classes.index(message.class_name)]
                shared = "its id and its wire name" if reuse.same_wire_name else "its id"
                yield f"Shares {shared} with {other}. {reuse.effect}"
        for note in self.notes:
            if note.class_name == message.class_name:
                yield note.text

    def signatures(self):
        """The instantiations of the templates in use, the bases of each among them, by length and type."""
        prefixes = {m.signature[:n] for m in self.messages for n in range(1, len(m.signature) + 1)}
        order = list(FIELD_TYPES)
        return sorted(prefixes, key=lambda types: (len(types), [order.index(t) for t in types]))


IDENTIFIER = re.compile(r"[A-Za-z_][A-Za-z0-9_]*")

CPP_KEYWORDS = frozenset(
    """alignas alignof and and_eq asm auto bitand bitor bool break case catch char char8_t char16_t char32_t class
    compl concept const consteval constexpr constinit const_cast continue co_await co_return co_yield decltype default
    delete do double dynamic_cast else enum explicit export extern false float for friend goto if inline int long
    mutable namespace new noexcept not not_eq nullptr operator or or_eq private protected public register
    reinterpret_cast requires return short signed sizeof static static_assert static_cast struct switch template this
    thread_local throw true try typedef typeid typename union unsigned using virtual void volatile wchar_t while xor
    xor_eq""".split()
)
