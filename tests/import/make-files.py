#!/usr/bin/python3
# Makes the files of this folder anew, each by a program that people's files come from: Python's csv, openpyxl and
# LibreOffice Calc in three locales. All hold the same orders. Packages: python3-openpyxl libreoffice-calc
# libreoffice-l10n-de libreoffice-l10n-en-gb
import csv
import datetime
import os
import subprocess
import sys
import tempfile

import openpyxl

HERE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "files")
HEADINGS = ["UCC", "Name", "Exchange", "Series", "Scrip", "Product", "Amount (Rs)", "Qty", "Frequency",
            "Start Date", "Instalments", "Action"]
DAY = datetime.date
ROWS = [
    ["001234", "Zoë \"Z\" Müller", "NSE", "EQ", "ALPHATEX", "CNC", 150000.5, None, "Monthly", DAY(2099, 3, 5), 12, "SIP"],
    ["CL100", "Line one\nline two", "NSE", "EQ", "ALPHACHEM", "CNC", None, 25, "weekly", DAY(2099, 5, 3), 24, "SIP"],
    ["CL101", "Rao, A.", "nse_cm", "EQ", "ALPHASTEEL", "CNC", 2500, None, "DAILY", DAY(2099, 12, 31), 60, "Buy"],
    ["CL102", "=1+1", "NSE", "EQ", "ALPHAFOODS", "CNC", 100000, None, "m", DAY(2099, 1, 28), 6, "SWP"],
]


def indian(amount):
    whole, part = f"{amount:.2f}".split(".")
    groups = [whole[-3:]]
    rest = whole[:-3]
    while rest:
        groups.insert(0, rest[-2:])
        rest = rest[:-2]
    return ",".join(groups) + "." + part


def texts(row):
    return ["" if cell is None else f"{cell:%d/%m/%Y}" if isinstance(cell, DAY)
            else indian(cell) if HEADINGS[i].startswith("Amount") else str(cell)
            for i, cell in enumerate(row)]


def write_text(name, delimiter, encoding, **options):
    with open(os.path.join(HERE, name), "w", newline="", encoding=encoding) as file:
        writer = csv.writer(file, delimiter=delimiter, **options)
        writer.writerows([["SIPs of branch Andheri, March"], [], HEADINGS] + [texts(row) for row in ROWS])


def write_workbook(path, epoch):
    book = openpyxl.Workbook()
    book.epoch = epoch
    sheet = book.active
    sheet.append(["SIPs of branch Andheri"])
    sheet.append([])
    sheet.append(HEADINGS)
    for row in ROWS:
        sheet.append(row)
    for row in sheet.iter_rows(min_row=4):
        row[1].data_type = "s"
        row[6].number_format = "#,##0.00"
        row[9].number_format = "dd/mm/yyyy"
    hidden = book.create_sheet("Notes", 0)
    hidden.sheet_state = "hidden"
    hidden.append(["Client", "Amount"])
    book.active = 1
    book.save(path)


def main():
    os.makedirs(HERE, exist_ok=True)
    write_text("csv-comma-utf8.csv", ",", "utf-8")
    write_text("csv-utf8-mark.csv", ",", "utf-8-sig", quoting=csv.QUOTE_ALL)
    write_text("csv-semicolon-1252.csv", ";", "cp1252")
    write_text("csv-tab-utf16le.txt", "\t", "utf-16")
    write_text("csv-comma-utf16be.csv", ",", "utf-16-be", lineterminator="\n")
    write_workbook(os.path.join(HERE, "openpyxl.xlsx"), openpyxl.utils.datetime.CALENDAR_WINDOWS_1900)
    write_workbook(os.path.join(HERE, "openpyxl-1904.xlsx"), openpyxl.utils.datetime.CALENDAR_MAC_1904)
    if "--without-calc" in sys.argv:
        return
    for locale in ("en-US", "en-GB", "de"):
        with tempfile.TemporaryDirectory() as home:
            settings = os.path.join(home, "user")
            os.makedirs(settings)
            with open(os.path.join(settings, "registrymodifications.xcu"), "w", encoding="utf-8") as file:
                file.write(f'''<?xml version="1.0" encoding="UTF-8"?>
<oor:items xmlns:oor="http://openoffice.org/2001/registry" xmlns:xs="http://www.w3.org/2001/XMLSchema"
 xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">
<item oor:path="/org.openoffice.Setup/L10N"><prop oor:name="ooSetupSystemLocale" oor:op="fuse"><value>{locale}</value></prop></item>
</oor:items>''')
            source = os.path.join(home, f"calc-{locale}.xlsx")
            write_workbook(source, openpyxl.utils.datetime.CALENDAR_WINDOWS_1900)
            # As shown, with the locale's own separator: 59 is a semicolon, 44 a comma; 76 is UTF-8.
            separator = 59 if locale == "de" else 44
            for target in (f"csv:Text - txt - csv (StarCalc):{separator},34,76,1,,0,false,true,false,false,false,2",
                           "xlsx:Calc MS Excel 2007 XML"):
                subprocess.run(["soffice", f"-env:UserInstallation=file://{home}", "--headless", "--convert-to",
                                target, "--outdir", os.path.join(home, "out"), source], check=True)
            for name in os.listdir(os.path.join(home, "out")):
                os.replace(os.path.join(home, "out", name),
                           os.path.join(HERE, name.replace("-Tabelle1", "").replace("-Sheet", "")))


main()
