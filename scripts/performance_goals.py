"""What the benchmarks' results are held against: the goals, and a verdict for each."""
import statistics

Median = statistics.median
Reached, Missed, Unmeasurable = "reached", "missed", "not measurable here"
Steady = 0.05  # of the goal: rounds that differ by more tell nothing


def spread(values):
    """The range of the middle half of the rounds."""
    low, _, high = statistics.quantiles(values, n=4)
    return high - low


def ratios(mine, other):
    return [a / b for a, b in zip(mine, other)]


class Goal:
    """`floor`: what the same measurement gives for the floor, when no driver can reach the goal on this machine."""
    def __init__(self, what, limit, rounds, at_most=True, unit="×", floor=None):
        self.what, self.limit, self.at_most, self.unit, self.floor = what, limit, at_most, unit, floor
        self.value = Median(rounds)
        self.spread = spread(rounds) if len(rounds) > 1 else 0
        self.verdict = self.judge()

    def judge(self):
        if self.spread > Steady * self.limit:
            return Unmeasurable
        met = self.value <= self.limit if self.at_most else self.value >= self.limit
        return Reached if met else Missed

    def words(self):
        beyond = self.verdict == Missed and self.floor is not None and self.floor < self.limit
        return f"{self.verdict}, by the floor too: {self.shown(self.floor)}" if beyond else self.verdict

    def shown(self, value):
        return f"{value:.2f} ×" if self.unit == "×" else f"{value:,.0f}{self.unit}"

    def record(self):
        return {"what": self.what, "goal": self.limit, "at_most": self.at_most, "unit": self.unit,
                "measured": round(self.value, 4), "spread": round(self.spread, 4), "verdict": self.verdict}


def link_goals(results):
    links = results["loopback"]["one_core"]
    driver = links["driver"]

    def cpu(other):
        factor = links[other]["bytes"] / driver["bytes"]
        return [ratio * factor for ratio in ratios(driver["cpu_ns"], links[other]["cpu_ns"])]

    def speed(other, mine=driver):
        factor = mine["bytes"] / links[other]["bytes"]
        return [ratio * factor for ratio in ratios(links[other]["wall_ns"], mine["wall_ns"])]

    def floor_speed(other):
        return Median(speed(other, links["floor"]))

    return [
        Goal("Exchange of a 999-byte group, client CPU, to the floor", 1.10, cpu("floor")),
        Goal("The driver's instructions in it", 31000, [results["counts"]["exchange-999"]], unit=""),
        Goal("Bytes/s, to the floor", 0.9, speed("floor"), at_most=False),
        Goal("Client CPU for each KiB, to libmodbus", 0.25, cpu("libmodbus")),
        Goal("Client CPU for each KiB, to Qt SerialBus", 0.15, cpu("qt_serialbus")),
        Goal("Bytes/s, to libmodbus", 4.5, speed("libmodbus"), at_most=False,
             floor=floor_speed("libmodbus")),
        Goal("Bytes/s, to Qt SerialBus", 7, speed("qt_serialbus"), at_most=False,
             floor=floor_speed("qt_serialbus")),
    ]


def driver_goals(results):
    groups = results["driver"]

    def to(group, other):
        return ratios(groups[group]["driver"], groups[group][other])

    goals = [
        Goal("Storing 999 bytes, to the hash alone", 1.10, to("store_999", "hash_alone")),
        Goal("Reading 999 bytes by label, to the hash alone", 1.10, to("read_999", "hash_alone")),
        Goal("Cached read of 4 bytes, hot, to the straightforward way", 0.45, to("read_4/1", "straightforward")),
        Goal("Uncached resolution of a name, to its lookups", 2, to("resolve_plain", "own_lookups")),
        Goal("Uncached resolution of A[i].Member, to its lookups", 3, to("resolve_member", "own_lookups")),
    ]
    for kind in ("warm", "cold"):
        for count in (1000, 10000, 100000):
            goals.append(Goal(f"Rebuild of {count:,}, {kind}, to its lookups and the sort", 1.5,
                              to(f"rebuild_{kind}/{count}", "least")))
    return goals + [
        Goal("Check value of 1,012 bytes, to a 256-entry table", 0.30, to("check/1012", "256_entries")),
        Goal("Check value of 12 bytes, to a 256-entry table", 0.50, to("check/12", "256_entries")),
        Goal("Filling the one-shot queue: 2,048 to 512 reads (n log n: 4.9)", 4.9,
             to("once_fill/2048", "quarter")),
    ]


def memory_goals(results):
    memory = results["memory"]
    return [
        Goal("Memory for each polled byte, to the hash alone", 1, [round(memory["image_byte"]) / round(memory["hash_byte"])]),
        Goal("Memory that 20,000 exchanges add", 0, [memory["growth"]], unit=" bytes"),
    ]


def all_goals(results):
    return link_goals(results) + driver_goals(results) + memory_goals(results)
