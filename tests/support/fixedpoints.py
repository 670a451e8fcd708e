#!/usr/bin/env python3
"""Writes the contributions of all fixed-point EMFs, in exact arithmetic: fixedpoints.py FILE.csv

Prints how near the nearest entry comes to a tie of the rounding.
"""
import sys
from fractions import Fraction
from math import floor

# degrees Celsius, then the lowest and the highest EMF in microvolts
POINTS = {
    "zinc": ("419.527", 3437, 3460),
    "aluminium": ("660.323", 5842, 5877),
    "copper": ("1084.62", 10542, 10607),
}
TEMPERATURES = range(300, 1201, 100)
CELSIUS = {name: Fraction(point[0]) for name, point in POINTS.items()}


def contribution(name, microvolts, temperature):
    """In units of 0.1 microvolts."""
    first, second = (CELSIUS[other] for other in POINTS if other != name)
    numerator = (temperature - first) * (temperature - second)
    return 10 * microvolts * numerator / ((CELSIUS[name] - first) * (CELSIUS[name] - second))


def fixed(units, decimals):
    sign = "-" if units < 0 else ""
    whole, part = divmod(abs(units), 10**decimals)
    return f"{sign}{whole}.{part:0{decimals}}"


def main():
    nearest_tie = Fraction(1)
    with open(sys.argv[1], "w", encoding="ascii", newline="\n") as file:
        print("point", "emf", *TEMPERATURES, sep=",", file=file)
        for name, (_, lowest, highest) in POINTS.items():
            for microvolts in range(lowest, highest + 1):
                exact = [contribution(name, microvolts, t) for t in TEMPERATURES]
                ties = [abs(e - floor(e) - Fraction(1, 2)) for e in exact]
                nearest_tie = min(nearest_tie, *ties)
                rounded = [fixed(floor(e + Fraction(1, 2)), 4) for e in exact]
                print(name, fixed(microvolts, 3), *rounded, sep=",", file=file)
    print(f"nearest to a tie: {float(nearest_tie):.3g} of the last digit")


main()
