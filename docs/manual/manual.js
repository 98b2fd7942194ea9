// Searches all pages, whose words search-index.js brings along, and lists the best first.
"use strict";
(function () {
  const field = document.getElementById("search");
  const found = document.getElementById("found");
  const contents = document.getElementById("contents");

  function scoreOf(page, words) {
    const title = page.title.toLowerCase();
    const text = page.text.toLowerCase();
    let score = 0;
    for (const word of words) {
      if (title.startsWith(word)) score += 100;
      else if (title.includes(word)) score += 50;
      else if (text.includes(word)) score += Math.min(text.split(word).length - 1, 20);
      else return 0;
    }
    return score;
  }

  function excerpt(text, word) {
    const place = Math.max(text.toLowerCase().indexOf(word) - 40, 0);
    return (place > 0 ? "\u2026" : "") + text.slice(place, place + 120) + "\u2026";
  }

  function search() {
    const words = field.value.toLowerCase().split(/\s+/).filter(Boolean);
    contents.hidden = words.length > 0;
    found.replaceChildren();
    if (words.length === 0) return;
    const pages = manualPages
      .map((page) => ({ page, score: scoreOf(page, words) }))
      .filter((row) => row.score > 0)
      .sort((a, b) => b.score - a.score)
      .slice(0, 30);
    for (const { page } of pages) {
      const link = document.createElement("a");
      link.href = page.address + "?search=" + encodeURIComponent(field.value);
      link.textContent = page.title;
      const words_ = document.createElement("p");
      words_.textContent = excerpt(page.text, words[0]);
      found.append(link, words_);
    }
    if (pages.length === 0) found.textContent = "Nothing is found.";
  }

  field.addEventListener("input", search);
  document.addEventListener("keydown", (event) => {
    if (event.key === "/" && document.activeElement !== field) {
      event.preventDefault();
      field.focus();
    } else if (event.key === "Escape" && document.activeElement === field) {
      field.value = "";
      search();
    }
  });
  const asked = new URLSearchParams(location.search).get("search");
  if (asked) {
    field.value = asked;
    search();
  }
  const current = contents.querySelector(".current");
  if (current) current.scrollIntoView({ block: "center" });
})();
