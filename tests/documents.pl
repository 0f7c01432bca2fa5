#!/usr/bin/perl
# Fails when a document names what is not there. In every document: links, and paths in backticks. In the dealer's and
# the hosts' documents double quotes hold the product's own texts: each must be in the sources, with "..." for what
# varies; and each word in backticks. "Entry" (Key) must be a menu's entry with that key. What must be named is listed below.
use strict;
use warnings;
use File::Basename;
use File::Find;

chdir dirname(__FILE__) . "/.." or die "no sources: $!";
my $bad = 0;
sub Complain { print shift, "\n"; $bad = 1; }
sub Read { my ($name) = @_; local $/; open my $file, "<", $name or die "$name: $!"; return scalar <$file>; }

my ($raw, $texts) = ("", "");
find({no_chdir => 1, wanted => sub {
    return unless -f && /\.(cpp|h|rc|1|cmake|txt|sh|in|cmd|py)$/;
    my $source = Read($_);
    $raw .= $source;
    return if m{^(tests|fuzz|bench)/} || !/\.(cpp|h|rc)$/;
    $source =~ s{^\s*(//|#include).*$}{}mg;
    $source =~ s/(?<!\\)"\s*\n\s*L?"//g;
    $texts .= "$1\n" while $source =~ /"((?:[^"\\\n]|\\.)*)"/g;
}}, qw(tests plugin host sdk framework base tools fuzz bench cmake packaging));
$texts =~ s/\\"/"/g;
$texts =~ s/\\n/ /g;
$texts =~ s/\\x2026/.../g;
my $marked = $texts;
$texts =~ s/&(?=\w)//g;
$texts =~ s/ +/ /g;

sub Stands {
    my ($text) = @_;
    return 1 if index($texts, $text) >= 0;
    my @parts = grep { /\w/ } split /\s*\.\.\.\s*/, $text;
    return @parts > 0 && $text =~ /\.\.\./ && !grep { index($texts, $_) < 0 } @parts;
}

# By the menu, or as the underlined letter.
sub HasKey {
    my ($entry, $key) = @_;
    return 1 if $key !~ /\+|^F\d|^Del$|^Enter$/ || index($texts, "$entry\\t$key") >= 0;
    return $key =~ /^Alt\+(\w)$/ && grep { /&$1/i && s/&//r eq $entry } split /\n/, $marked;
}

my %whole;
for my $name (glob("*.md docs/*.md")) {
    my $text = $whole{$name} = Read($name);
    $text =~ s/^(    .*|```.*?^```)$//msg;
    $whole{$name} =~ s/\s+/ /g;
    while ($text =~ /\]\(([^)#\s]+)[^)]*\)/g) {
        my $target = $1;
        Complain("$name: there is no $target") unless $target =~ /^https?:/ || -e dirname($name) . "/$target";
    }
    my $isProducts = $name =~ m{docs/(guide|install|hosts|server|troubleshooting)\.md};
    while ($text =~ /`([^`]+)`/g) {
        for my $word (split /\s+/, $1) {
            if ($word =~ m{^(plugin|host|sdk|framework|base|tools|tests|fuzz|bench|docs|data|cmake)/}) {
                my @found = glob($word);
                Complain("$name: there is no $word") unless @found && -e $found[0];
            } elsif ($isProducts || $name =~ m{docs/(developers|design)\.md}) {
                for (grep { /[a-z]{3}/ && !/YYYY/ } split m{[\\/|,()\[\]=:]}, $word =~ s/\.(exe|dll)\b//r) {
                    Complain("$name: nothing knows `$_`") if index($raw, $_) < 0;
                }
            }
        }
    }
    next unless $isProducts;
    $text =~ s/`[^`]*`//g;
    $text =~ s/\s+/ /g;
    while ($text =~ /"([^"]+)"(?: \((?=[A-Z])([\w+]+)\))?/g) {
        my ($said, $key) = ($1, $2);
        Complain("$name: no text is \"$said\"") unless Stands($said);
        Complain("$name: no menu has \"$said\" with $key")
            if $key && !HasKey($said, $key);
    }
}

# What a document must name.
sub Named {
    my ($document, $pattern, $form, @sources) = @_;
    for my $source (map { Read($_) } @sources) {
        while ($source =~ /$pattern/g) {
            my $text = sprintf $form, map { defined $_ ? $_ : () } $1, $2;
            $text =~ s/&(?=\w)//g;
            $text =~ s{ +}{ }g;
            Complain("$document does not name $text") if index($whole{$document} // "", $text) < 0;
        }
    }
}
my @menus = split /\n/, `grep -rlE '"[^"]*[.a-z]\\\\t(Ctrl|Del|F[0-9]|Alt|Shift)' plugin host/korvexcontrols`;
Named("docs/guide.md", qr/"([^"\\]+)\\t((?:Ctrl|Alt|Shift|Del|F\d)[\w+]*)"/, '"%s" (%s)', @menus);
Named("docs/guide.md", qr/^CAPTION "([^"]+)"/m, '"%s"', "plugin/resources/Planfold.rc");
Named("docs/troubleshooting.md", qr/kCode\w+ = "(\d+)"/, '| %s |', "host/server/ServerRefusal.h");
Named("docs/hosts.md", qr/^    X\((\w+)/m, '`%s`', "sdk/HostExports.h");
# What a box says, up to what varies.
$whole{"guide and troubleshooting"} = $whole{"docs/guide.md"} . $whole{"docs/troubleshooting.md"};
my @boxes = split /\n/, `grep -rlE 'ShowLast|ShowMessage|oxes.Show' plugin --include=*.cpp`;
Named("guide and troubleshooting", qr/(?:ShowLast|ShowMessage|oxes\.Show)\([^;"]*" ?([^"\\%]{6,}?) ?["\\%]/, '%s', @boxes);
exit $bad;
