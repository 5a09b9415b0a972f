"use strict";
// Fills the page from its data. With #test in its address the page tests itself: see the end.
const opened = performance.now();
const complaints = [];
addEventListener("error", (event) => complaints.push(event.message));
for (const level of ["error", "warn"]) {
    const original = console[level].bind(console);
    console[level] = (...words) => { complaints.push(words.join(" ")); original(...words); };
}

const report = JSON.parse(document.getElementById("data").textContent);
const byId = (id) => document.getElementById(id);
const color = (name) => getComputedStyle(document.documentElement).getPropertyValue("--" + name).trim();

// An element that holds text, never markup.
function element(tag, text, className) {
    const made = document.createElement(tag);
    made.textContent = text ?? "";
    if (className) made.className = className;
    return made;
}

// ---- head ----

const titles = { run: "ravikTest", compare: "Two runs", bench: "Ravik beside other libraries" };
document.body.className = report.kind;
document.title = byId("title").textContent = titles[report.kind];
if (report.kind === "run") {
    byId("verdict").hidden = false;
    byId("verdict").textContent = { PASS: "all passed", FAIL: "failed" }[report.verdict] ?? "no verdict";
    byId("verdict").classList.add(report.verdict ?? "none");
}
report.notes.forEach((note) => byId("notes").append(element("p", note, "note")));
report.facts.forEach(([name, value]) => byId("facts").append(element("dt", name), element("dd", value)));

byId("failed").hidden = report.failures.length === 0;
for (const failure of report.failures) {
    byId("failures").append(element("h3", failure.name, "FAIL"));
    byId("failures").append(element("pre", failure.lines.join("\n") || "The log does not tell of it."));
}
byId("groups").hidden = report.groups.length === 0;
const failuresFirst = (a, b) => (a.verdict === "FAIL" ? 0 : 1) - (b.verdict === "FAIL" ? 0 : 1);
[...report.groups].sort(failuresFirst).forEach((group) =>
    byId("groups").lastElementChild.append(element("span", group.name, group.verdict)));

// ---- table ----

const digits = (number) => (number >= 100 || number === 0 ? 0 : number >= 10 ? 1 : number >= 0.1 ? 2 : 3);
const shown = (number) => (number == null ? "" : number.toFixed(digits(number)));
const escaped = $.fn.dataTable.render.text();
const column = (title, data) => ({ title: escaped.display(title), data, render: escaped, type: "string" });
const number = (title, data) => ({
    title: escaped.display(title), data, className: "number", type: "num",
    render: (value, how) => (how === "display" || how === "filter" ? shown(value) : value ?? -1),
});
const ratio = (a, b) => (a > 0 && b > 0 ? a / b : null);
const kNoise = 1.1;
const changeOf = (before, after) => {
    if (!(before > 0)) return after > 0 ? "new" : "";
    if (!(after > 0)) return "gone";
    return after > kNoise * before ? "slower" : before > kNoise * after ? "faster" : "same";
};

function columns(target) {
    const head = [column("function", "name"), column("family", "family")];
    const times = () => report.targets.map((title, i) => number(title, (row) => row.times[i]));
    if (report.kind === "run")
        return [...head, column("verdict", "verdict"), number("C / VECTA", speedUp), ...times()];
    if (report.kind === "bench")
        return [...head, column("size", "size"), ...times(), column("mark", "mark")];
    const pair = (row) => row.pairs[target];
    return [...head, column("change", (row) => changeOf(...pair(row))), number("before", (row) => pair(row)[0]),
            number("after", (row) => pair(row)[1]), number("before / after", (row) => ratio(...pair(row)))];
}

const indexOf = (name) => report.targets.indexOf(name);
const reference = Math.max(indexOf("C reference"), indexOf("C"));
const vecta = indexOf("VECTA");
// How many times as fast the vector implementation is; of two runs, the later one.
function speedUp(row) {
    if (reference < 0 || vecta < 0) return null;
    if (report.kind === "compare") return ratio(row.pairs[vecta][0], row.pairs[vecta][1]);
    return ratio(row.times[reference], row.times[vecta]);
}

let table;
function fillTable(target) {
    if (table) table.destroy();
    byId("table").replaceChildren();
    table = new DataTable("#table", {
        data: report.rows, columns: columns(target), order: [], pageLength: 100, deferRender: true, autoWidth: false,
        lengthMenu: [[100, 1000, -1], ["100", "1000", "all"]],
        createdRow: (tr, row) => {
            const word = report.kind === "compare" ? changeOf(...row.pairs[target]) : row.verdict;
            if (report.kind !== "bench") tr.children[2].classList.add(word || "none");
        },
    });
}
if (report.kind === "run") report.rows.sort(failuresFirst);
if (report.kind === "compare") {
    byId("choice").hidden = false;
    report.targets.forEach((title, i) => byId("target").append(new Option(title, i)));
    byId("target").value = Math.max(vecta, 0);
    byId("target").addEventListener("change", () => fillTable(Number(byId("target").value)));
}
fillTable(Math.max(vecta, 0));

// ---- charts ----

const byFamily = new Map();
for (const row of report.rows) {
    const times = speedUp(row);
    if (times == null) continue;
    if (!byFamily.has(row.family)) byFamily.set(row.family, []);
    byFamily.get(row.family).push({ name: row.size ? row.name + " " + row.size : row.name, times });
}
const all = [...byFamily.values()].flat().map((row) => row.times);
const least = Math.min(1, ...all), most = Math.max(1, ...all);

const quantile = (sorted, part) => {
    const at = part * (sorted.length - 1), below = Math.floor(at);
    return sorted[below] + (at - below) * ((sorted[below + 1] ?? sorted[below]) - sorted[below]);
};

function barChart(canvas, labels, datasets, say) {
    Chart.defaults.color = color("ink");
    Chart.defaults.borderColor = color("line");
    canvas.parentElement.style.height = 60 + 18 * labels.length + "px";
    return new Chart(canvas, {
        type: "bar",
        data: { labels, datasets },
        options: {
            indexAxis: "y", animation: false, maintainAspectRatio: false,
            scales: {
                x: { type: "logarithmic", min: least / 1.2, max: most * 1.2, position: "top" },
                y: { stacked: true, ticks: { autoSkip: false } },
            },
            plugins: { legend: { display: false }, tooltip: { callbacks: { label: say } } },
        },
    });
}

function familyChart(family, rows) {
    const details = document.createElement("details");
    details.append(element("summary", `${family}: ${rows.length}`));
    const holder = element("div", "", "chart"), canvas = document.createElement("canvas");
    holder.append(canvas);
    details.append(holder);
    let chart;
    details.addEventListener("toggle", () => {
        // From 1, to the left what the vector implementation is slower in.
        chart ??= barChart(canvas, rows.map((row) => row.name), [{
            data: rows.map((row) => [Math.min(1, row.times), Math.max(1, row.times)]),
            backgroundColor: rows.map((row) => (row.times < 1 ? color("bad") : color("bar"))), barPercentage: 0.8,
        }], (item) => `${shown(rows[item.dataIndex].times)} times as fast`);
    });
    return details;
}

if (all.length > 0) {
    byId("charts").hidden = false;
    byId("chartsTitle").textContent = report.kind === "compare" ? "Before / after, by family"
                                                                : "How much faster than the reference, by family";
    byId("legend").textContent = "From the least to the largest of each family; thick from the first quartile to the " +
        "third; the line is the median. Below, the functions of each. The axes are logarithmic.";
    const families = [...byFamily.keys()];
    const sorted = families.map((family) => byFamily.get(family).map((row) => row.times).sort((a, b) => a - b));
    const bars = (from, to, thickness, shade) => ({
        data: sorted.map((times) => [from(times), to(times)]), barThickness: thickness, backgroundColor: shade,
        grouped: false,
    });
    const at = (part) => (times) => quantile(times, part);
    const hair = (most / least) ** 0.002; // half the width of the median's line
    barChart(byId("families"), families, [
        bars((t) => at(0.5)(t) / hair, (t) => at(0.5)(t) * hair, 14, color("ink")),
        bars(at(0.25), at(0.75), 10, color("bar")),
        bars(at(0), at(1), 2, color("soft")),
    ], (item) => ["median: ", "quartiles: ", "all: "][item.datasetIndex] + item.raw.map(shown).join(" to "));
    families.forEach((family) => byId("perFamily").append(familyChart(family, byFamily.get(family))));
}

// ---- the test of the page: what it found stands in the body's data ----

function testPage() {
    const results = [];
    const check = (what, holds) => results.push((holds ? "ok: " : "NOT OK: ") + what);
    const names = () => table.column(0, { search: "applied", order: "applied" }).data().toArray();
    check("every row is in the table", table.rows().count() === report.rows.length);
    const wanted = report.rows[report.rows.length - 1].name;
    const before = performance.now();
    table.search(wanted, false, false).draw(); // word for word
    const filtering = performance.now() - before;
    check("the filter finds a function", names().includes(wanted));
    check("and no other", names().every((name) => name.toLowerCase().includes(wanted.toLowerCase())));
    table.search("").order([0, "desc"]).draw();
    const order = names();
    check("sorting sorts", order.length === report.rows.length &&
        order.every((name, i) => i === 0 || order[i - 1].toLowerCase() >= name.toLowerCase()));
    table.order([]).draw();
    document.querySelectorAll("details").forEach((details) => details.open = true);
    const allText = document.body.textContent;
    check("what failed comes first", report.failures.every((failure) => allText.includes(failure.name)));
    check("it opens and filters within a second", openedWithin + filtering < 1000);
    setTimeout(() => {
        check("the console has no complaint: " + complaints.join("; "), complaints.length === 0);
        document.body.dataset.test = results.every((result) => result.startsWith("ok")) ? "passed" : "failed";
        document.body.dataset.results = results.join("\n") + `\nopened in ${openedWithin.toFixed(0)} ms, filtered in ${filtering.toFixed(0)} ms`;
    }, 100);
}
const openedWithin = performance.now() - opened;
if (location.hash === "#test") testPage();
