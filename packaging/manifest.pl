#!/usr/bin/perl
# Writes the manifest by which a host uses the module without registration: manifest.pl VERSION ROOT BUILD > tavlcom.manifest
# It is the module's assembly: a host lays it beside the module, and names the assembly "tavlcom" in a manifest of its own.
# ROOT is the folder of the sources, BUILD that of the build.
use strict;
use warnings;
use FindBin;
use lib $FindBin::Bin;
use Registration;

die "usage: see the head of $0\n" unless @ARGV == 3;
my ($version, $root, $build) = @ARGV;
my %library = Registration::library($root);

# Value by key and name, and the order of the classes.
my (%value, @classes);
for (Registration::of_classes($build)) {
  my ($key, $name, $text) = @$_;
  $value{$key}{$name // ''} = $text;
  push @classes, $1 if !defined $name && $key =~ /\\CLSID\\(\{[^\\]*\})$/;
}

sub attribute { my ($name, $text) = @_; my %code = ('&' => '&amp;', '<' => '&lt;', '"' => '&quot;'); return sprintf ' %s="%s"', $name, $text =~ s/([&<"])/$code{$1}/gr }
sub element {
  my ($name, @attributes) = @_;
  my $text = "<$name";
  $text .= attribute(splice @attributes, 0, 2) while @attributes;
  return $text;
}

my $content = '';
for my $class (@classes) {
  my $key = "Software\\Classes\\CLSID\\$class";
  my $of = sub { my ($path, $name) = @_; return $value{$key . $path}{$name // ''} // die "$class: no $path\n" };
  $content .= '    ' . element('comClass', clsid => $class, description => $of->(''), threadingModel => $of->('\\InprocServer32', 'ThreadingModel'), tlbid => $library{id},
                               progid => $of->('\\VersionIndependentProgID')) . ">\n"
    . '      <progid>' . $of->('\\ProgID') . "</progid>\n    </comClass>\n";
}
$content .= '    ' . element('typelib', tlbid => $library{id}, version => $library{version}, helpdir => '') . "/>\n";
my $interfaces = join '', map { '  ' . element('comInterfaceExternalProxyStub', name => $_->[1], iid => $_->[0], tlbid => $library{id},
                                             proxyStubClsid32 => Registration::MARSHALER) . "/>\n" } @{$library{interfaces}};
print <<"XML";
<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <assemblyIdentity type="win32" name="tavlcom" version="$version.0" processorArchitecture="amd64"/>
  <file name="tavlcom.dll">
$content  </file>
$interfaces</assembly>
XML
