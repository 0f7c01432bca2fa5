#!/usr/bin/env python3
"""Writes the made-up scrip master and client list into data/. The same files come out at each run."""

import pathlib
import random

DATA = pathlib.Path(__file__).resolve().parents[3] / "data"

FIRST = """ALPHA AMBER ARBOR ASTER AURO BASALT BEACON BIRCH BLUE BRAMBLE CEDAR CINDER CLOVER COBALT CORAL CREST
CYPRESS DELTA DRIFT EMBER FABLE FALCON FERN FLINT GARNET GLADE HARBOR HAZEL HELIO INDIGO IVORY JASPER JUNO KESTREL
LAGOON LARCH LUMEN MAPLE MARLIN MERIDIAN MISTRAL NIMBUS NOVA OCHRE ONYX OPAL ORBIT OSPREY PEBBLE PRISM QUARRY RAVEN
RIDGE ROWAN SABLE SIERRA SILVER SORREL SPRUCE SUMMIT TERRA THISTLE TIDAL UMBER VALE VERDE VIOLET WILLOW WREN
ZEPHYR""".split()
SECOND = {
    "TEX": "Textiles", "CHEM": "Chemicals", "STEEL": "Steel", "FOODS": "Foods", "PHARM": "Pharma",
    "POWER": "Power", "AUTO": "Automotive", "FIN": "Finance", "SOFT": "Software", "AGRO": "Agro Products",
    "PACK": "Packaging", "LOGI": "Logistics", "INFRA": "Infrastructure", "MEDIA": "Media", "TOOLS": "Tools",
    "CABLE": "Cables", "GLASS": "Glass", "PAPER": "Papers", "TILES": "Ceramics", "PUMPS": "Pumps",
    "MARINE": "Marine", "MINES": "Mining", "OPTIC": "Optics", "RUBBER": "Rubber",
}
GIVEN = """Aarav Anika Arjun Bela Chetan Daya Esha Farhan Gita Harish Ila Jatin Kavya Leela Manav Nisha Ojas Pari
Rohan Sana Tara Uday Veda Yash Zoya""".split()
FAMILY = "Anand Bhatt Chavan Dutta Gokhale Iyer Joshi Kulkarni Lal Menon Nair Oza Pillai Rao Sethi Thakur".split()

HEADING = "exchange,series,symbol,token,trading symbol,company,decimals,multiplier,tick size,last price,cautionary"


def scrips(rng):
    names = [(first + second, f"{first.capitalize()} {word} Ltd")
             for first in FIRST for second, word in SECOND.items()]
    token = {"nse_cm": 1000, "bse_cm": 500000}

    def row(exchange, series, symbol, company, cautionary):
        token[exchange] += rng.randint(1, 9)
        # A few scrips are quoted with four decimals.
        decimals, multiplier, tick = (4, 10000, 25) if rng.random() < 0.02 else (2, 100, rng.choice((1, 5, 5, 5)))
        price = rng.randint(1500, 400000) * multiplier // 100
        return (f"{exchange},{series},{symbol},{token[exchange]},{symbol}-{series},{company},"
                f"{decimals},{multiplier},{tick},{price - price % tick},{'Y' if cautionary else 'N'}")

    for symbol, company in names:
        yield row("nse_cm", "EQ", symbol, company, symbol != names[0][0] and rng.random() < 0.04)
    for symbol, company in rng.sample(names, 240):
        yield row("nse_cm", "BE", symbol, company, rng.random() < 0.5)
    for symbol, company in rng.sample(names, 60):
        yield row("nse_cm", "SM", symbol, company, False)
    for symbol, company in names[::2]:
        yield row("bse_cm", "EQ", symbol, company, rng.random() < 0.04)
    for symbol, company in rng.sample(names, 120):
        yield row("bse_cm", "T", symbol, company, True)


def clients(rng):
    # CL100 is also the beginning of CL1001 and its like, so a search must be able to ask for exactly one.
    for number in [*range(100, 110), *range(1000, 1190), *range(110, 151)]:
        yield f"CL{number},{rng.choice(GIVEN)} {rng.choice(FAMILY)},{'Y' if rng.random() < 0.1 else 'N'}"


def main():
    rng = random.Random(20100329)
    for name, heading, rows in (("scrips.csv", HEADING, scrips(rng)), ("clients.csv", "client,name,mapped", clients(rng))):
        (DATA / name).write_text("\n".join([heading, *rows]) + "\n", encoding="ascii", newline="\n")


if __name__ == "__main__":
    main()
