"""Turns the rows of performance_rows.py and the medians of the benchmark programs into the tables of the document."""

import math

from measuring import factor_text, size_text, table, three_digits, time_text
from performance_rows import GROWTHS, MEMORY, ROWS, SIZES


def sized(program, name, smoke):
    return name.format(SIZES[program][1 if smoke else 0])


def growth_sizes(growth, smoke):
    """A smoke run takes the two smallest: it only shows that the tables can be built."""
    return list(growth.sizes[:2] if smoke else growth.sizes)


def names_of(program, smoke):
    """Every benchmark of `program` that the rows ask for."""
    names = set()
    for row in ROWS:
        if row.program == program:
            names.add(sized(program, row.name, smoke))
            names.update(sized(program, beside.name, smoke) for beside in (row.peer, row.limit) if beside)
    for growth in GROWTHS:
        if growth.program == program:
            names.update(growth.name.format(size) for size in growth_sizes(growth, smoke))
    names.update(sized(program, memory.name, smoke) for memory in MEMORY if memory.program == program)
    return names


def is_there(medians, row, smoke):
    return not row.some_processors or medians.has(sized(row.program, row.name, smoke))


def beside_cells(medians, row, beside, smoke):
    if beside is None:
        return [""] * 5
    other = medians.cpu(sized(row.program, beside.name, smoke))
    own = medians.cpu(sized(row.program, row.name, smoke))
    if beside.more_ms is not None:
        met = "met" if own - other <= beside.more_ms else "not met"
        return [beside.text, time_text(other), f"+ {time_text(max(own - other, 0))}", f"+ {time_text(beside.more_ms)}", met]
    goal, met = "", ""
    if beside.goal is not None:
        goal, met = factor_text(beside.goal), "met" if own / other <= beside.goal else "not met"
    return [beside.text, time_text(other), factor_text(own / other), goal, met]


def time_cell(medians, name):
    return f"{time_text(medians.cpu(name))} ± {100 * medians.spread(name):.0f} %"


def goals_part(programs, smoke):
    head = ["work", "time"]
    for kind in ("peer", "limit"):
        head += [kind, f"time of the {kind}", f"compared with the {kind}", "goal, at most", f"against the {kind}"]
    return table(head, ([row.work, time_cell(programs[row.program], sized(row.program, row.name, smoke))]
                        + beside_cells(programs[row.program], row, row.peer, smoke)
                        + beside_cells(programs[row.program], row, row.limit, smoke)
                        for row in ROWS if is_there(programs[row.program], row, smoke)))


def exponent(points):
    """The slope of the least-squares line through the logarithms of (size, cost)."""
    xs, ys = ([math.log(point[axis]) for point in points] for axis in (0, 1))
    x_mean, y_mean = sum(xs) / len(xs), sum(ys) / len(ys)
    return sum((x - x_mean) * (y - y_mean) for x, y in zip(xs, ys)) / sum((x - x_mean) ** 2 for x in xs)


def growth_part(programs, smoke):
    def cells(growth):
        sizes = growth_sizes(growth, smoke)
        times = [programs[growth.program].cpu(growth.name.format(size)) for size in sizes]
        last = exponent(list(zip(sizes, times))[-2:])
        return [growth.what, ", ".join(f"{size:,}" for size in sizes), ", ".join(time_text(time) for time in times),
                three_digits(exponent(list(zip(sizes, times)))), three_digits(last), growth.note]
    return table(["what grows", "from, to", "times", "exponent", "exponent of the last decade", "expected"],
                 map(cells, GROWTHS))


def memory_part(programs, smoke):
    def cells(memory):
        name = sized(memory.program, memory.name, smoke)
        medians = programs[memory.program]
        peak = medians.counter(name, memory.counter)
        each = peak / medians.counter(name, memory.unit_counter)
        return [memory.what, size_text(peak), f"{three_digits(each)} bytes a {memory.unit}"]
    return table(["work", "peak memory, or size", "for each"], map(cells, MEMORY))
