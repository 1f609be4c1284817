#!/usr/bin/perl
# Judges what was measured: judge.pl MODE FOLDER [PAGE]
# FOLDER/PART.jsonl holds the samples of a part of the measurements, a line of JSON per row and process; rows of one name are
# put together. Every row has a limit in the table below; one without is an error.
#   table  prints the rows; exit code 1 if a limit is exceeded
#   check  exit code 1 unless each part has all its rows, with figures: for runs that are too short to be judged
#   page   writes FOLDER/speed.json, the tables of PAGE between its markers and the plots beside it
use strict;
use warnings;
use File::Basename qw(dirname);
use JSON::PP;

die "usage: see the head of $0\n" unless @ARGV >= 2;
my ($mode, $folder, $page) = @ARGV;

# Kinds of limits: the ratio to the yardstick; what is above the yardstick; the figure itself.
my ($ratio, $above, $itself) = qw(ratio above itself);
my @classes = qw(QUIVO LocalParam RSrvParam CertId SignParam Policy Extension VerifyParam AltName Certificate SignStatus
                 EncryptParam DecryptParam ExportParam ImportParam FindParam StreamCtx pkiobj);
my @operations = qw(sign verify encrypt decrypt hash);
my @streams = map { "stream-$_" } @operations;
my %parts = (
  calls => [
    ['bytes in, 64 MiB', 'the same with 16 bytes', $ratio, 1.02],
    ['VBS form in, 8 MiB', 'a loop that copies the elements', $ratio, 1.05],
    ['VBS form out, 8 MiB', '`SafeArrayCreateVector`, fill, destroy', $ratio, 1.05],
    ['bytes out, 64 MiB', '`SafeArrayCreateVector`, `memcpy`, destroy', $ratio, 1.05],
    (map { ["late-bound $_", '`Scripting.Dictionary`', $ratio, 0.5] }
       'put, number', 'get, number', 'put, string', 'get, string'),
    (map { ["late-bound method, $_", 'the call through the virtual table', $above, 0.5] } qw(variable result holder)),
    (map { ["GetIDsOfNames, $_", '`Scripting.Dictionary`', $ratio, 1] } qw(longest last)),
    (map { ["factory, $_", '`Scripting.Dictionary` through its factory', $ratio, 0.5] } @classes),
    (map { [$_, 'the activation of the same objects', $ratio, 1.05] }
       'FindCert, 1,000 certificates', 'FindCert, 10,000 certificates', 'VerifyMem, 1,000 signatures'),
    ['FindCert, growth', 'ten times that of 1,000', $ratio, 1.05],
    ['load and unload', '`scrrun.dll`', $ratio, 1.5],
    ['script loop', 'items of a `Scripting.Dictionary`', $ratio, 0.7],
  ],
  files => [
    (map { ["file, $_", 'the `openssl` command', $ratio, $_ eq 'hash' ? 1 : 0.9] } @operations),
    (map { ["file, $_", 'the `openssl` command', $ratio, 1] } @streams),
  ],
  memory => [map { ["peak memory, $_", 'itself with 16 MiB', $above, 4] } @operations, @streams],
  small => [map { ["small files, $_", 'libcrypto, called directly', $ratio, 1.15] } @operations[0 .. 3]],
  store => [
    (map { my $size = $_; map { ["store of $size, $_", 'the store of 10', $ratio, 1.5] }
         'find by serial number', 'find by key', 'verify', 'encrypt' } 100, 1000, 10000),
    ['first session', 'reading the files', $ratio, 1.5],
    ['second session', '', $itself, 5],
    ['session after an addition', '', $itself, 20],
  ],
  threads => [['two threads', 'one thread', $ratio, 0.55]],
  tests => [['tools/test', '', $itself, 60]],
);
my @gost = qw(sign verify encrypt hash);
$parts{gost} = [
  (map { ["GOST, $_", 'the `openssl` command with Debian\'s engine', $ratio, 1.1] } @gost),
  (map { ["GOST peak memory, $_", 'itself with 16 MiB', $above, 4] } @gost, 'decrypt'),
];
my %titles = (gost => 'GOST algorithms', calls => 'Calls', files => 'Large files', memory => 'Memory', small => 'Small files', store => 'The store',
              threads => 'Threads', tests => 'The tests');
my @order = qw(calls files memory gost small store threads tests);

sub quantile {
  my ($share, @values) = @_;
  @values = sort { $a <=> $b } @values;
  return $values[int($share * $#values + 0.5)];
}
sub median { quantile(0.5, @_) }

# The samples of a part by row, the points of its plots, and when they were taken.
sub read_part {
  my ($part) = @_;
  my $path = "$folder/$part.jsonl";
  open my $in, '<:raw', $path or return;
  my (%rows, @points, $about);
  while (my $line = <$in>) {
    my $data = eval { decode_json($line) } or die "$path: $line";
    if ($data->{about}) { $about = $data->{about}; next }
    if ($data->{point}) { push @points, $data; next }
    my $row = $rows{$data->{row}} //= { unit => $data->{unit}, module => [], yardstick => [] };
    push @{ $row->{$_} }, @{ $data->{$_} } for qw(module yardstick);
  }
  return { rows => \%rows, points => \@points, about => $about };
}

# One row with its figures and its verdict.
sub judged {
  my ($limit, $samples) = @_;
  my ($name, $against, $kind, $most) = @$limit;
  my ($module, $yardstick) = @$samples{qw(module yardstick)};
  return if !@$module || ($kind ne $itself && @$yardstick != @$module);
  return if $kind eq $ratio && grep { $_ <= 0 } @$yardstick;
  my @compared = $kind eq $itself ? @$module
    : map { $kind eq $ratio ? $module->[$_] / $yardstick->[$_] : $module->[$_] - $yardstick->[$_] } 0 .. $#$module;
  my $value = median(@compared);
  return {
    row => $name, against => $against, kind => $kind, unit => $samples->{unit}, limit => $most, samples => scalar @$module,
    module => median(@$module), yardstick => @$yardstick ? median(@$yardstick) : undef,
    value => $value, spread => [quantile(0.25, @compared), quantile(0.75, @compared)],
    verdict => $value <= $most ? 'met' : 'missed',
  };
}

sub figure { my ($value) = @_; $value == 0 ? '0' : abs $value >= 100 ? sprintf '%.0f', $value : abs $value >= 10 ? sprintf '%.1f', $value : sprintf '%.3g', $value }
sub compared { my ($row, $value) = @_; $row->{kind} eq 'ratio' ? sprintf '%.2f', $value : ($row->{kind} eq 'above' && $value >= 0 ? '+' : '') . figure($value) . " $row->{unit}" }
sub cells {
  my ($row) = @_;
  return ($row->{row}, figure($row->{module}) . " $row->{unit}",
          defined $row->{yardstick} ? figure($row->{yardstick}) . " $row->{unit}" : '-', compared($row, $row->{value}),
          join(' to ', map { compared($row, $_) } @{ $row->{spread} }), compared($row, $row->{limit}), $row->{verdict});
}

my @columns = qw(row module yardstick ratio spread limit verdict);
my (%measured, $bad, @found);
for my $part (@order) {
  my $read = read_part($part) or next;
  push @found, $part;
  $measured{$part} = { %$read, judged => [] };
  for my $limit (@{ $parts{$part} }) {
    my $samples = delete $read->{rows}{ $limit->[0] };
    my $row = $samples && judged($limit, $samples);
    if ($row) { push @{ $measured{$part}{judged} }, $row; next }
    print "$part: no figures for '$limit->[0]'\n" if $mode ne 'page';
    $bad = 1;
  }
  for (sort keys %{ $read->{rows} }) { print "$part: '$_' has no limit\n"; $bad = 1 }
}
die "nothing was measured\n" unless @found;

sub print_table {
  my $format = "%-42s %12s %12s %11s %20s %9s  %s\n";
  printf $format, @columns;
  printf $format, cells($_) for map { @{ $measured{$_}{judged} } } @found;
}

sub write_file {
  my ($path, $text) = @_;
  open my $out, '>:raw', $path or die "$path: $!\n";
  print $out $text;
  close $out or die "$path: $!\n";
}

# The curves of the plots: seconds and MiB above the start, against the size of the file.
sub plot {
  my ($points, $what, $title, $path) = @_;
  my %curves;
  push @{ $curves{ $_->{point} } }, "$_->{mib} $_->{$what}" for sort { $a->{mib} <=> $b->{mib} } @$points;
  my $script = "set terminal svg size 900,480 font 'sans-serif' background '#ffffff'\nset output '$path'\nset key outside right top\n"
    . "set logscale x 2\nset xlabel 'MiB of the file'\nset ylabel '$title'\nset grid\n" . ($what eq 'seconds' ? "set logscale y\n" : "set yrange [0:*]\n");
  my @names = sort keys %curves;
  $script .= 'plot ' . join(', ', map { "'-' with linespoints title '$_'" } @names) . "\n";
  $script .= join("\n", @{ $curves{$_} }) . "\ne\n" for @names;
  open my $gnuplot, '|-', 'gnuplot' or die "gnuplot: $!\n";
  print $gnuplot $script;
  close $gnuplot or die "gnuplot failed\n";
}

sub write_page {
  write_file("$folder/speed.json", JSON::PP->new->canonical->pretty->encode(
    { map { $_ => { about => $measured{$_}{about}, rows => $measured{$_}{judged}, points => $measured{$_}{points} } } @found }));
  my $text = '';
  for my $part (@found) {
    $text .= "### $titles{$part}\n\nMeasured $measured{$part}{about}.\n\n";
    $text .= "| row | against | module | yardstick | ratio | spread | limit | verdict |\n|---|---|---|---|---|---|---|---|\n";
    for my $row (@{ $measured{$part}{judged} }) {
      my ($name, @cells) = cells($row);
      $text .= '| ' . join(' | ', $name, $row->{against} || '-', @cells) . " |\n";
    }
    $text .= "\n";
  }
  if (my @points = @{ ($measured{memory} // {})->{points} // [] }) {
    plot(\@points, 'seconds', 'seconds', dirname($page) . '/speed-time.svg');
    plot(\@points, 'memory', 'MiB above the start', dirname($page) . '/speed-memory.svg');
    $text .= "![Time against size](speed-time.svg)\n\n![Memory against size](speed-memory.svg)\n\n";
  }
  open my $in, '<:raw', $page or die "$page: $!\n";
  my $whole = do { local $/; <$in> };
  $whole =~ s/(<!-- tables -->\n).*(<!-- end of tables -->\n)/$1\n$text$2/s or die "$page has no markers\n";
  write_file($page, $whole);
}

if ($mode eq 'page') { write_page() }
elsif ($mode eq 'table') {
  print_table();
  $bad ||= grep { $_->{verdict} ne 'met' } map { @{ $measured{$_}{judged} } } @found;
  exit($bad ? 1 : 0);
}
elsif ($mode eq 'check') { exit($bad ? 1 : 0) }
else { die "usage: see the head of $0\n" }
